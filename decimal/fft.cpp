#include "decimal/fft.h"

#include <cmath>
#include <initializer_list>

#include "decimal/engine.h"

namespace zev::decimal {
namespace {

constexpr auto kName = "M_fast_mul_fft";
constexpr double kPi = 3.14159265358979323846;

/// The roots of one step over blocks of `length` points: for each j below a quarter of it
/// the first three powers of the j-th root, in six arrays.
constexpr std::size_t rootsOfStep(std::size_t length) {
  return length / 4 * 6;
}

void makeRoots(double *roots, std::size_t length) {
  const std::size_t quarter = length / 4;
  for (std::size_t j = 0; j < quarter; ++j) {
    for (std::size_t power = 1; power <= 3; ++power) {
      const double angle = -2 * kPi * static_cast<double>(power * j) /  //
                           static_cast<double>(length);
      roots[(2 * power - 2) * quarter + j] = std::cos(angle);
      roots[(2 * power - 1) * quarter + j] = std::sin(angle);
    }
  }
}

/// The length of the shortest step of four: 4 or 8, by whether the count is a power of 4.
std::size_t shortestStep(std::size_t count) {
  return std::countr_zero(count) % 2 == 0 ? 4 : 8;
}

/// The roots of all steps, the shortest first, so that those of fewer points lead.
const double *rootsFor(std::size_t count) {
  Engine &own = engine();
  const std::size_t parity = std::countr_zero(count) % 2;
  Buffer<double> &buffer = own.twiddles[parity];
  if (own.twiddlePoints[parity] >= count) return buffer.sized(0, kName);
  std::size_t total = 0;
  for (std::size_t length = shortestStep(count); length <= count; length *= 4)
    total += rootsOfStep(length);
  double *at = buffer.sized(total, kName), *const roots = at;
  for (std::size_t length = shortestStep(count); length <= count; length *= 4) {
    makeRoots(at, length);
    at += rootsOfStep(length);
  }
  own.twiddlePoints[parity] = count;
  return roots;
}

/// A quarter of a block and the roots for it.
struct Step {
  double *__restrict re0, *__restrict im0, *__restrict re1, *__restrict im1;
  double *__restrict re2, *__restrict im2, *__restrict re3, *__restrict im3;
  const double *__restrict c1, *__restrict s1, *__restrict c2, *__restrict s2;
  const double *__restrict c3, *__restrict s3;
  std::size_t quarter;

  Step(Points p, std::size_t at, std::size_t q, const double *roots)
      : re0(p.re + at),
        im0(p.im + at),
        re1(re0 + q),
        im1(im0 + q),
        re2(re1 + q),
        im2(im1 + q),
        re3(re2 + q),
        im3(im2 + q),
        c1(roots),
        s1(c1 + q),
        c2(s1 + q),
        s2(c2 + q),
        c3(s2 + q),
        s3(c3 + q),
        quarter(q) {}
};

/// Four points of a block become one each of four blocks of a quarter of its length.
void splitInFour(Points points, std::size_t at, std::size_t quarter,
                 const double *roots) {
  const Step s(points, at, quarter, roots);
  for (std::size_t j = 0; j < quarter; ++j) {
    const double ar = s.re0[j] + s.re2[j], ai = s.im0[j] + s.im2[j];
    const double br = s.re0[j] - s.re2[j], bi = s.im0[j] - s.im2[j];
    const double cr = s.re1[j] + s.re3[j], ci = s.im1[j] + s.im3[j];
    const double dr = s.im1[j] - s.im3[j], di = s.re3[j] - s.re1[j];  // times -i
    s.re0[j] = ar + cr;
    s.im0[j] = ai + ci;
    const double er = br + dr, ei = bi + di;
    s.re1[j] = er * s.c1[j] - ei * s.s1[j];
    s.im1[j] = er * s.s1[j] + ei * s.c1[j];
    const double fr = ar - cr, fi = ai - ci;
    s.re2[j] = fr * s.c2[j] - fi * s.s2[j];
    s.im2[j] = fr * s.s2[j] + fi * s.c2[j];
    const double gr = br - dr, gi = bi - di;
    s.re3[j] = gr * s.c3[j] - gi * s.s3[j];
    s.im3[j] = gr * s.s3[j] + gi * s.c3[j];
  }
}

/// The way back of splitInFour, times 4.
void joinFour(Points points, std::size_t at, std::size_t quarter, const double *roots) {
  const Step s(points, at, quarter, roots);
  for (std::size_t j = 0; j < quarter; ++j) {
    const double er = s.re1[j] * s.c1[j] + s.im1[j] * s.s1[j];
    const double ei = s.im1[j] * s.c1[j] - s.re1[j] * s.s1[j];
    const double fr = s.re2[j] * s.c2[j] + s.im2[j] * s.s2[j];
    const double fi = s.im2[j] * s.c2[j] - s.re2[j] * s.s2[j];
    const double gr = s.re3[j] * s.c3[j] + s.im3[j] * s.s3[j];
    const double gi = s.im3[j] * s.c3[j] - s.re3[j] * s.s3[j];
    const double ar = s.re0[j] + fr, ai = s.im0[j] + fi;
    const double cr = s.re0[j] - fr, ci = s.im0[j] - fi;
    const double br = er + gr, bi = ei + gi;
    const double dr = gi - ei, di = er - gr;  // times i
    s.re0[j] = ar + br;
    s.im0[j] = ai + bi;
    s.re1[j] = cr + dr;
    s.im1[j] = ci + di;
    s.re2[j] = ar - br;
    s.im2[j] = ai - bi;
    s.re3[j] = cr - dr;
    s.im3[j] = ci - di;
  }
}

void pairUp(Points points) {
  for (std::size_t i = 0; i < points.count; i += 2) {
    for (double *part : {points.re + i, points.im + i}) {
      const double sum = part[0] + part[1], difference = part[0] - part[1];
      part[0] = sum;
      part[1] = difference;
    }
  }
}

}  // namespace

void transform(Points points) {
  const double *roots = rootsFor(points.count);
  std::size_t length = points.count;
  for (std::size_t l = shortestStep(length); l < length; l *= 4) roots += rootsOfStep(l);
  for (; length >= 4; length /= 4) {
    for (std::size_t at = 0; at < points.count; at += length)
      splitInFour(points, at, length / 4, roots);
    roots -= rootsOfStep(length / 4);
  }
  if (length == 2) pairUp(points);
}

void transformBack(Points points) {
  const double *roots = rootsFor(points.count);
  std::size_t length = shortestStep(points.count);
  if (length == 8) pairUp(points);
  for (; length <= points.count; length *= 4) {
    for (std::size_t at = 0; at < points.count; at += length)
      joinFour(points, at, length / 4, roots);
    roots += rootsOfStep(length);
  }
}

Weights weightsFor(std::size_t points) {
  Engine &own = engine();
  double *pairs = own.weights.sized(2 * points, kName);
  if (own.weightPoints < points) {
    for (std::size_t j = 0; j < points; ++j) {
      const double angle = kPi / 2 * static_cast<double>(j) / static_cast<double>(points);
      pairs[2 * j] = std::cos(angle);
      pairs[2 * j + 1] = std::sin(angle);
    }
    own.weightPoints = points;
  }
  return {pairs, own.weightPoints / points};
}

}  // namespace zev::decimal
