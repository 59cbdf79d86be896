/// ELF files of all forms, whole and damaged.
#include <gtest/gtest.h>

#include <random>

#include "elf_builder.h"

namespace zev::test {
namespace {

using ocicheck::BadElf;
using ocicheck::ElfFile;
using ocicheck::readElf;
using Names = std::vector<std::string_view>;

ElfPlan planOf(bool is64, bool bigEndian, bool sections, bool gnuHash) {
  return {.is64 = is64,
          .bigEndian = bigEndian,
          .sections = sections,
          .gnuHash = gnuHash,
          .needed = {"libclntsh.so.19.1", "libc.so.6"},
          .imported = {"printf", "OCIPing", "OCIAttrGet"},
          .defined = {"main"},
          .texts = {"OCILobRead2", "no name", "OCIAttrGet failed", "prefixOCIPing",
                    "libclntsh.so", "OCI"}};
}

class ElfForms : public testing::TestWithParam<std::tuple<bool, bool, bool, bool>> {
 protected:
  ElfBuilder builder_{std::apply(planOf, GetParam())};
};

TEST_P(ElfForms, TellTheirNames) {
  const ElfFile file = readElf(builder_.bytes());
  EXPECT_EQ(file.is64, std::get<0>(GetParam()));
  EXPECT_EQ(file.bigEndian, std::get<1>(GetParam()));
  EXPECT_EQ(file.type, ET_DYN);
  EXPECT_EQ(file.needed, (Names{"libclntsh.so.19.1", "libc.so.6"}));
  EXPECT_EQ(file.imported, (Names{"OCIAttrGet", "OCIPing", "printf"}));
  EXPECT_EQ(file.defined, Names{"main"});
  EXPECT_EQ(file.texts, (Names{"OCILobRead2", "libclntsh.so"}));
}

TEST_P(ElfForms, CutAnywhereAreReadOrRefused) {
  const auto &bytes = builder_.bytes();
  for (std::size_t size = 0; size < bytes.size(); ++size) {
    // A block of its own, so that a byte behind the end is a fault.
    const std::vector<unsigned char> cut(bytes.begin(),
                                         bytes.begin() + static_cast<long>(size));
    EXPECT_THROW(readElf(cut), BadElf) << size;
  }
}

TEST_P(ElfForms, WithAnyByteChangedAreReadOrRefused) {
  std::mt19937 random(testing::UnitTest::GetInstance()->random_seed());
  std::vector<unsigned char> bytes = builder_.bytes();
  int refused = 0;
  for (std::size_t at = 0; at < bytes.size(); ++at) {
    const unsigned char former = bytes[at];
    for (const unsigned char changed :
         {former ^ 1, former ^ 0x80, 0xff, static_cast<int>(random() & 0xff)}) {
      bytes[at] = changed;
      try {
        readElf(bytes);
      } catch (const BadElf &) {
        ++refused;
      }
    }
    bytes[at] = former;
  }
  EXPECT_GT(refused, 0);
}

std::string nameOf(const testing::TestParamInfo<ElfForms::ParamType> &row) {
  const auto &[is64, bigEndian, sections, gnuHash] = row.param;
  return std::string(is64 ? "Of64" : "Of32") + (bigEndian ? "Big" : "Little") +
         (sections ? "WithSections" : "WithoutSections") +
         (gnuHash ? "GnuHash" : "SysvHash");
}
INSTANTIATE_TEST_SUITE_P(All, ElfForms,
                         testing::Combine(testing::Bool(), testing::Bool(),
                                          testing::Bool(), testing::Bool()),
                         nameOf);

TEST(ElfFiles, AnObjectFileTellsTheSymbolsThatItLacks) {
  ElfPlan plan = planOf(true, false, true, false);
  plan.type = ET_REL;
  plan.needed.clear();
  const ElfBuilder builder(plan);
  const ElfFile file = readElf(builder.bytes());
  EXPECT_EQ(file.imported, (Names{"OCIAttrGet", "OCIPing", "printf"}));
  EXPECT_EQ(file.texts, (Names{"OCILobRead2", "libclntsh.so"}));
}

/// What a file is refused for.
std::string refusal(const std::string &bytes) {
  try {
    readElf({reinterpret_cast<const unsigned char *>(bytes.data()), bytes.size()});
  } catch (const BadElf &error) {
    return error.what();
  }
  return "";
}

TEST(ElfFiles, GarbageIsRefusedWithAClearWord) {
  EXPECT_EQ(refusal(""), "not an ELF file");
  EXPECT_EQ(refusal("#!/bin/sh\n"), "not an ELF file");
  EXPECT_EQ(refusal("\177ELF"), "the file ends before what it announces");
  EXPECT_EQ(refusal(std::string("\177ELF\7\1", 6)), "of an unknown width");
  EXPECT_EQ(refusal(std::string("\177ELF\2\7", 6)), "of an unknown byte order");
  EXPECT_EQ(refusal(std::string("\177ELF\2\1", 6)),
            "the file ends before what it announces");
}

}  // namespace
}  // namespace zev::test
