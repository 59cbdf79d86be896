#include "stmt/dynamic_data.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <new>
#include <string>
#include <vector>

#include "core/edge_text.h"
#include "stmt/bind_value.h"
#include "stmt/field.h"
#include "stmt/row_buffers.h"
#include "zevoci/errors.h"

namespace {

/// Types whose values cross whole.
constexpr ub2 kUndivided[] = {2,   3,   4,   6,   7,   10,  11,  12,  15,  21,
                              22,  68,  91,  94,  95,  96,  97,  100, 101, 102,
                              104, 105, 106, 108, 110, 114, 115, 116, 122, 155,
                              156, 184, 185, 186, 187, 188, 189, 190, 232, 241};
static_assert(std::ranges::is_sorted(kUndivided));

/// What the program offers a value to go to.
struct Place {
  void *buffer = nullptr;
  ub4 *length = nullptr;
  ub1 piece = OCI_ONE_PIECE;
  void *indicator = nullptr;
  ub2 *returnCode = nullptr;

  bool hasRoom() const { return buffer && length && *length != 0; }
};

/// The bytes of a converted value that is dealt out. Some members report the length that
/// a text has on the server, which is not the one that it has in UTF-16.
std::size_t valueSize(const OCIEnv *env, ub2 dty, const char *value, std::size_t reported,
                      std::size_t room) {
  if (!zev::isUtf16(env) || reported == 0) return std::min(reported, room);
  if (dty == SQLT_STR) return zev::textLength(env, value, room);
  if (dty != SQLT_VCS) return std::min(reported, room);
  ub2 prefix = 0;
  std::memcpy(&prefix, value, sizeof prefix);
  return std::min(sizeof prefix + prefix, room);
}

/// Deals a converted value out over the places that the program offers.
template <class Ask>
sword dealOut(OCIError *errhp, const char *value, std::size_t size, Place place,
              const Ask &ask) {
  for (;;) {
    if (!place.hasRoom()) return zev::fail(errhp, 3131);
    const std::size_t n = std::min<std::size_t>(*place.length, size);
    std::memcpy(place.buffer, value, n);
    *place.length = static_cast<ub4>(n);
    value += n;
    size -= n;
    if (size == 0) return OCI_SUCCESS;
    place = {.piece = OCI_NEXT_PIECE};
    if (ask(place) != OCI_CONTINUE) return zev::fail(errhp, 24343);
  }
}

/// One value and the callback that says where it goes.
template <class Ask>
struct Delivery {
  OCIError *errhp;
  ub2 dty;
  zev::ColumnConversion conversion;
  zev::Field field;
  OCIStmt *child;  ///< takes the name of a cursor in place of the offered buffer
  Ask ask;

  sword run(ub1 firstPiece) const {
    Place place{.piece = firstPiece};
    if (ask(place) != OCI_CONTINUE) return zev::fail(errhp, 24343);
    return getOraclePieceInfo(dty) ? whole(place) : inPieces(place);
  }

 private:
  zev::FieldTarget target(void *buffer, ub4 *length, const Place &place) const {
    return {buffer, length, static_cast<sb2 *>(place.indicator), place.returnCode};
  }

  sword whole(const Place &place) const {
    if (place.piece != OCI_ONE_PIECE) return zev::fail(errhp, 24370);
    zev::traceField("dynamicData", field);
    ub4 nameLength = 0;
    if (child) {
      return zev::convertField(errhp, conversion, field,
                               target(child, &nameLength, place));
    }
    if (!field.isNull && !place.hasRoom()) return zev::fail(errhp, 3131);
    return zev::convertPlainField(errhp, conversion, field,
                                  target(place.buffer, place.length, place));
  }

  sword inPieces(const Place &place) const {
    const auto fieldLength = static_cast<ub4>(field.length);
    const OCIEnv *env = zev::parentEnv(errhp);
    const std::size_t size = getOracleDataTypeSize(dty, fieldLength, zev::isUtf16(env));
    const bool unknownSize = size == 0 && fieldLength != 0 && conversion.convert;
    if (unknownSize || size > INT_MAX) return zev::fail(errhp, 24330);
    try {
      // Some types end a value that fills its buffer with one more byte.
      std::vector<char> value(size + 1);
      auto length = static_cast<ub4>(size);
      zev::traceField("dynamicData", field);
      const sword status = zev::convertPlainField(errhp, conversion, field,
                                                  target(value.data(), &length, place));
      if (!zev::isSuccess(status)) return status;
      return dealOut(errhp, value.data(), valueSize(env, dty, value.data(), length, size),
                     place, ask);
    } catch (const std::bad_alloc &) {
      return zev::fail(errhp, 24330);
    }
  }
};

/// What an in callback answers.
struct Answer {
  void *buffer = nullptr;
  ub4 length = 0;
  ub1 piece = OCI_FIRST_PIECE;
  sb2 *indicator = nullptr;

  bool isNull() const { return indicator && *indicator == OCI_IND_NULL; }
};

/// Asks for a value or its next piece; false when the callback does not go on.
bool askForValue(OCIBind *bind, ub4 iteration, Answer &answer) {
  void *indicator = nullptr;
  const sb4 outcome = bind->icbfp(bind->icbctx, bind, iteration, 0, &answer.buffer,
                                  &answer.length, &answer.piece, &indicator);
  answer.indicator = static_cast<sb2 *>(indicator);
  return outcome == OCI_CONTINUE;
}

sword convertAnswer(OCIBind *bind, OCIError *errhp, const Answer &answer) {
  if (answer.length > INT_MAX) return zev::fail(errhp, 24330);
  sb2 local = 0;
  sb2 *indicator = answer.indicator ? answer.indicator : &local;
  if (!answer.buffer) *indicator = OCI_IND_NULL;
  return zev::convertBindValue(bind, errhp, answer.buffer,
                               static_cast<sb4>(answer.length), indicator);
}

/// Gathers pieces until the callback gives a last one that is null, which makes the whole
/// value null: only this ends the pieces of a value.
sword convertPieces(OCIBind *bind, OCIError *errhp, ub4 iteration, Answer answer) {
  std::string gathered;
  for (;;) {
    if (answer.buffer) {
      gathered.append(static_cast<const char *>(answer.buffer), answer.length);
    }
    if (answer.piece == OCI_LAST_PIECE && answer.isNull()) break;
    answer = {.piece = OCI_NEXT_PIECE};
    if (!askForValue(bind, iteration, answer)) return zev::fail(errhp, 24343);
  }
  answer.buffer = gathered.data();
  answer.length = static_cast<ub4>(std::min<std::size_t>(gathered.size(), INT_MAX));
  return convertAnswer(bind, errhp, answer);
}

}  // namespace

extern "C" {

boolean getOraclePieceInfo(ub2 dty) {
  return std::ranges::binary_search(kUndivided, dty);
}

std::size_t getOracleDataTypeSize(ub2 dty, ub4 length, boolean isUtf16) {
  if (length == 0) return 0;
  const std::size_t text = isUtf16 ? std::size_t{4} * length : length;
  switch (dty) {
    case SQLT_CHR:
    case SQLT_LNG:
    case SQLT_BIN:
    case SQLT_LBI:
      return text;
    case SQLT_STR:
      return text + 1;
    case SQLT_VCS:
      return text + 2;
    default:
      return 0;
  }
}

sword call_define_callback(OCIDefine *define, OCIError *errhp, const PGresult *result,
                           sb4 iteration, sb4 row, sb4 column, PGconn *conn) {
  if (!zev::asDefine(define) || !zev::asError(errhp) || !result || row < 0 ||
      column < 0) {
    return OCI_INVALID_HANDLE;
  }
  if (!define->ocbfpDef) return OCI_NEED_DATA;
  const auto ask = [&](Place &place) {
    return define->ocbfpDef(define->ocbctxDef, define, static_cast<ub4>(iteration),
                            &place.buffer, &place.length, &place.piece, &place.indicator,
                            &place.returnCode);
  };
  const Delivery<decltype(ask)> delivery{
      errhp,
      define->dty,
      zev::conversionOf(PQftype(result, column), define->dty, conn),
      zev::fieldAt(result, row, column),
      nullptr,
      ask};
  return delivery.run(OCI_FIRST_PIECE);
}

sword call_out_bind_callback(OCIError *errhp, OCIBind *bind, sb4 iteration,
                             const PGresult *result, sb4 column) {
  if (!zev::asBind(bind) || !bind->isDynamic || !zev::asError(errhp) || !result ||
      iteration < 0 || column < 0) {
    return OCI_INVALID_HANDLE;
  }
  if (!bind->ocbfp) return OCI_NEED_DATA;
  const auto ask = [&](Place &place) {
    return bind->ocbfp(bind->ocbctx, bind, static_cast<ub4>(iteration), 0, &place.buffer,
                       &place.length, &place.piece, &place.indicator, &place.returnCode);
  };
  const Delivery<decltype(ask)> delivery{
      errhp,
      bind->dty,
      zev::conversionOf(PQftype(result, column), bind->dty, nullptr),
      zev::fieldAt(result, 0, column),
      zev::childOf(bind, static_cast<ub4>(iteration)),
      ask};
  return delivery.run(OCI_ONE_PIECE);
}

}  // extern "C"

sword zev::takeDynamicValue(OCIBind *bind, OCIError *errhp, ub4 iteration) {
  if (!asError(errhp) || !asBind(bind)) return OCI_INVALID_HANDLE;
  if (!bind->icbfp) return OCI_NEED_DATA;
  Answer answer;
  if (!askForValue(bind, iteration, answer)) return fail(errhp, 24343);
  if (getOraclePieceInfo(bind->dty)) {
    if (answer.piece != OCI_ONE_PIECE) return fail(errhp, 24370);
    if (bind->dty != SQLT_RSET) return convertAnswer(bind, errhp, answer);
    bind->valuep = answer.buffer;
    return OCI_SUCCESS;
  }
  const bool isWhole = answer.piece == OCI_ONE_PIECE || answer.piece == OCI_LAST_PIECE;
  if (isWhole || answer.isNull()) return convertAnswer(bind, errhp, answer);
  try {
    return convertPieces(bind, errhp, iteration, answer);
  } catch (const std::bad_alloc &) {
    return fail(errhp, 24330);
  }
}
