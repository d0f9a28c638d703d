// The shapefile library and the table writer, byte by byte.
#include "exchange/shape_file.h"

#include <gtest/gtest.h>

#include <random>

#include "exchange/dbf_writer.h"
#include "support/temp_dir.h"

namespace ormel::test {
namespace {

std::string Hex(std::string_view bytes) {
  static constexpr char kDigits[] = "0123456789abcdef";
  std::string text;
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    text += kDigits[byte >> 4U];
    text += kDigits[byte & 15U];
  }
  return text;
}

std::string Zeros(int bytes) {
  return std::string(static_cast<std::size_t>(2 * bytes), '0');
}

CPart Part(std::initializer_list<CPoint> points) {
  CPart part;
  for (const CPoint& point : points) part.Add(point);
  return part;
}

template <class Shape>
Shape Of(std::initializer_list<CPart> parts) {
  Shape shape;
  for (const CPart& part : parts) shape.Add(part);
  return shape;
}

template <class Act>
void ExpectError(const Act& act, const std::string& source, const std::string& text) {
  try {
    act();
    ADD_FAILURE() << "no error: " << text;
  } catch (const ShapeError& error) {
    EXPECT_EQ(error.what(), text);
    EXPECT_EQ(error.source(), source);
  }
}

TEST(ShapeFile, OnePointByteByByte) {
  const TempDir dir;
  {
    CShapeFile file;
    file.SetFileSpec(dir / "a.shp", CShapeFile::CREATEIT, ShapeType::kPoint);
    file.Add(CPoint(2.5, -3.0));
  }
  // 9994, five words, 64 words of length, version 1000, type 1, the extent twice over, eight numbers in all.
  const std::string x = "0000000000000440", y = "00000000000008c0", box = x + y + x + y + Zeros(32);
  const std::string head = "0000270a" + Zeros(20);
  EXPECT_EQ(Hex(ReadAll(dir / "a.shp")), head + "00000040" + "e8030000" + "01000000" + box +  //
                                             "00000001" + "0000000a" + "01000000" + x + y);
  EXPECT_EQ(Hex(ReadAll(dir / "a.shx")), head + "00000036" + "e8030000" + "01000000" + box +  //
                                             "00000032" + "0000000a");
}

TEST(ShapeFile, OnePolygonByteByByte) {
  const TempDir dir;
  {
    CShapeFile file;
    file.SetFileSpec(dir / "a.shp", CShapeFile::CREATEIT, ShapeType::kPolygon);
    file.Add(Of<CPolygon>({Part({{0, 0}, {0, 1}, {1, 0}, {0, 0}})}));
  }
  const std::string zero = Zeros(8), one = "000000000000f03f";
  const std::string bytes = Hex(ReadAll(dir / "a.shp"));
  // 2 + 16 + 2 + 2 + 2 words before the points, 4 points of 8 words: 56.
  EXPECT_EQ(bytes.substr(200),
            "00000001"
            "00000038"
            "05000000" +
                zero + zero + one + one +  //
                "01000000"
                "04000000"
                "00000000" +
                zero + zero + zero + one + one + zero + zero + zero);
}

TEST(ShapeFile, WhatIsWrittenIsReadBack) {
  const TempDir dir;
  CShapeFile file;
  file.SetFileSpec(dir / "a.shp", CShapeFile::CREATEIT, ShapeType::kPolyLine);
  file.Add(Of<CPolyLine>({Part({{1, 2}, {3, 4}}), Part({{-5, 6}, {7, 8}, {9, 1}})}));
  CPolyLine null;
  file.Add(null);
  file.Add(Of<CPolyLine>({Part({{0, 0}, {20, 30}})}));
  EXPECT_EQ(file.Count(), 3);
  EXPECT_EQ(file.Item(1)->Left(), -5.0);  // written through before it is read
  file.Flush();

  CShapeFile read;
  read.SetFileSpec(dir / "A.SHP", CShapeFile::OPENIT);
  EXPECT_EQ(read.FileType(), ShapeType::kPolyLine);
  EXPECT_EQ(read.Count(), 3);
  EXPECT_EQ(read.Right(), 20.0);
  EXPECT_EQ(read.Top(), 30.0);
  const auto first = read.Item(1);
  const auto* line = dynamic_cast<const CPolyLine*>(first.get());
  ASSERT_NE(line, nullptr);
  ASSERT_EQ(line->parts().size(), 2U);
  EXPECT_EQ(line->parts()[1].points()[2].X, 9.0);
  EXPECT_TRUE(read.Item(2)->IsNull());
  EXPECT_EQ(read.Item(3)->Top(), 30.0);
  read.Add(Of<CPolyLine>({Part({{0, 0}, {20, 40}})}));
  EXPECT_EQ(read.Item(4)->Top(), 40.0);
  EXPECT_EQ(read.Top(), 40.0);
  ExpectError([&] { read.Item(5); }, "CShapeFile::FindOffset",
              "The offset read from index file is larger then the mainfile size");
}

TEST(ShapeFile, ANullShapeIsShortAndLeavesTheHeader) {
  const TempDir dir;
  CShapeFile file;
  file.SetFileSpec(dir / "a.shp", CShapeFile::CREATEIT, ShapeType::kPoint);
  file.Add(CPoint(1, 2));
  file.Flush();
  const std::string before = ReadAll(dir / "a.shp").substr(0, 100);
  file.Add(CPoint());
  file.Flush();
  const std::string after = ReadAll(dir / "a.shp");
  EXPECT_EQ(after.substr(0, 100), before);
  EXPECT_EQ(Hex(after.substr(128)),
            "00000002"
            "00000002"
            "0000");
  EXPECT_EQ(file.Left(), 1.0);
  EXPECT_TRUE(file.Item(2)->IsNull());
}

TEST(ShapeFile, RefusesWhatDoesNotBelongAndStaysAsItWas) {
  const TempDir dir;
  CShapeFile file;
  file.SetFileSpec(dir / "a.shp", CShapeFile::CREATEIT, ShapeType::kPoint);
  file.Flush();
  const std::string before = ReadAll(dir / "a.shp");
  const CPolyLine line = Of<CPolyLine>({Part({{1, 2}, {3, 4}})});
  ExpectError([&] { file.Add(line); }, "CShapeFile::Add",
              "Cannot add type CPolyline to a ShapeFile initialized as other type");
  ExpectError([&] { file.Add(CRect()); }, "CShapeFile::Add", "Invalid shape type");
  file.Flush();
  EXPECT_EQ(ReadAll(dir / "a.shp"), before);
  EXPECT_EQ(file.Count(), 0);
  CMultiPoint many;
  many.Add(CPoint(1, 1));
  EXPECT_NO_THROW(file.Add(many));  // asks for a file of points
  ExpectError([&] { CPart().Add(line); }, "CPart::Add", "CPart can only accept objects of type CPoint");
  ExpectError([&] { CPolygon().Add(CPoint(1, 1)); }, "CPolygon::Add",
              "CPolygon Add can only accept objects of type CPart");
  CShapeFile other;
  ExpectError([&] { other.SetFileSpec(dir / "none.shp", CShapeFile::OPENIT); }, "C_ShapeFile::SetFileSpec",
              "The specified file " + dir / "none.shp" + " does not exist.");
  ExpectError([&] { other.SetFileSpec("relative.shp", CShapeFile::OPENIT); }, "C_FileName::SetFileSpec",
              "The FileSpec is invalid");
  ExpectError([&] { other.SetFileSpec(dir / "n.shp", CShapeFile::CREATEIT); }, "C_ShapeFile::SetFileSpec",
              "The ShapeType argument is not optional when argument status is CREATEIT");
}

TEST(ShapeFile, NamesAreFullPaths) {
  CFileName name;
  name.SetFileSpec("C:\\maps\\town.v2.shp");
  EXPECT_EQ(name.GetBaseName(), "town.v2");
  EXPECT_EQ(name.GetFolder(), "C:\\maps\\");
  name.SetExtension("shx");
  EXPECT_EQ(name.GetFileSpec(), "C:\\maps\\town.v2.shx");
  for (const char* bad : {"", "town.shp", "C:\\a?.shp", "C:\\a:b.shp", "/maps/a*.shp", "C:"})
    ExpectError([&] { name.SetFileSpec(bad); }, "C_FileName::SetFileSpec", "The FileSpec is invalid");
  ExpectError([&] { name.SetBaseName("a.b"); }, "C_FileName::SetBaseName", "The FileSpec is invalid");
  ExpectError([&] { name.SetExtension("a.b"); }, "C_FileName::SetExtension", "The FileSpec is invalid");
}

TEST(ShapeFile, Distances) {
  const CPoint p(3, 4);
  EXPECT_EQ(p.Distance(CPoint(0, 0)), 5.0);
  EXPECT_EQ(p.Distance(CPoint(3, 4)), 0.0);
  EXPECT_EQ(p.Distance(Of<CPolyLine>({Part({{0, 0}, {10, 0}})})), 4.0);
  const CPolygon square = Of<CPolygon>({Part({{0, 0}, {0, 10}, {10, 10}, {10, 0}})});
  EXPECT_EQ(p.Distance(square), 0.0);
  EXPECT_EQ(CPoint(-2, 5).Distance(square), 2.0);
  ExpectError([&] { p.Distance(CPoint()); }, "CPoint::IShape_Distance",
              "Cannot compute distance to a null shape");
  std::string told;
  EXPECT_EQ(square.Distance(p, [&](std::string_view text) { told = text; }), 0.0);
  EXPECT_EQ(told, "NOT IMPLEMENTED");
}

TEST(ShapeFile, DamagedFilesAreRefusedInWords) {
  const TempDir dir;
  {
    CShapeFile file;
    file.SetFileSpec(dir / "a.shp", CShapeFile::CREATEIT, ShapeType::kPolygon);
    for (int i = 0; i < 3; ++i)
      file.Add(Of<CPolygon>({Part({{0, 0}, {0, 1.0 + i}, {1, 0}, {0, 0}}), Part({{5, 5}, {5, 6}, {6, 5}})}));
  }
  const std::string good_shp = ReadAll(dir / "a.shp"), good_shx = ReadAll(dir / "a.shx");
  std::mt19937 random(7);
  for (int i = 0; i < 500; ++i) {
    std::string shp = good_shp, shx = good_shx;
    std::string& victim = i % 3 == 0 ? shx : shp;
    if (i % 2 == 0)
      victim.resize(random() % victim.size());
    else
      victim[random() % victim.size()] ^= static_cast<char>(1U << (random() % 8));
    WriteAll(dir / "b.shp", shp);
    WriteAll(dir / "b.shx", shx);
    CShapeFile file;
    try {
      file.SetFileSpec(dir / "b.shp", CShapeFile::OPENIT);
      for (int n = 1; n <= file.Count(); ++n) file.Item(n);
    } catch (const ShapeError& error) {
      EXPECT_FALSE(std::string(error.what()).empty());
    }
  }
}

TEST(DbfWriter, OneTableByteByByte) {
  const TempDir dir;
  EXPECT_EQ(WriteDBF(dir / "a.dbf", {{"Inhomogeneity", 'C', {"ab", "Br\u00fccke"}}, {"D", 'L', {"T", ""}}},
                     {2001, 2, 3}),
            "Export OK");
  // Two records of 1 + 7 + 1 bytes behind 97 bytes of head.
  const std::string column =
      "00000000"
      "07"
      "00"
      "0000"
      "01" +
      Zeros(11);
  EXPECT_EQ(Hex(ReadAll(dir / "a.dbf")),
            "03"
            "650203"
            "02000000"
            "6100"
            "0900" +
                Zeros(20) +  //
                "496e686f6d6f67656e6569"
                "43" +
                column +  //
                "44" + Zeros(10) +
                "4c"
                "00000000"
                "01"
                "00"
                "0000"
                "01" +
                Zeros(11) + "0d" +
                "20"
                "61622020202020"
                "54"
                "20"
                "4272c3bc636b65"
                "20"
                "1a");
}

TEST(DbfWriter, Widths) {
  const TempDir dir;
  WriteDBF(dir / "none.dbf", {{"A", 'C', {}}}, {2026, 1, 1});
  EXPECT_EQ(ReadAll(dir / "none.dbf").size(), 33U + 32U + 1U);
  // 254 bytes are the most: a character of two bytes is not torn.
  WriteDBF(dir / "long.dbf", {{"A", 'C', {std::string(253, 'x') + "\u00fc"}}}, {2026, 1, 1});
  const std::string bytes = ReadAll(dir / "long.dbf");
  EXPECT_EQ(static_cast<unsigned char>(bytes[48]), 253U);
  EXPECT_EQ(bytes.size(), 65U + 1U + 253U + 1U);
  EXPECT_TRUE(
      WriteDBF(dir / "no" + "/x.dbf", {{"A", 'C', {}}}, {2026, 1, 1}).starts_with("Export Failed - "));
}

}  // namespace
}  // namespace ormel::test
