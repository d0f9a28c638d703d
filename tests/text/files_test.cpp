#include "text/files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <vector>

#include "support/temp_dir.h"
#include "text/csv.h"
#include "text/names.h"

namespace ormel {
namespace {

using test::ReadAll;
using test::TempDir;
using test::WriteAll;
using testing::ElementsAre;

std::vector<std::string> Lines(const std::string& path) {
  std::vector<std::string> lines;
  LineReader reader(path);
  for (std::string line; reader.Next(line);) lines.push_back(line);
  EXPECT_EQ(reader.line_number(), lines.size());
  return lines;
}

TEST(Paths, AreTakenApart) {
  const TempDir folder;
  EXPECT_EQ(GetPathFromFile("/a b/\u00fc/x.orm"), "/a b/\u00fc/");
  EXPECT_EQ(GetPathFromFile("x.orm"), "");
  EXPECT_EQ(FileTitle("/a.b/x.y.orm"), "x.y.orm");
  EXPECT_EQ(BaseName("/a.b/x.y.orm"), "x");
  EXPECT_EQ(BaseName("/a.b/plan"), "plan");
  EXPECT_EQ(JoinPath("/a/", "b"), "/a/b");
  EXPECT_EQ(JoinPath("/a", "b"), "/a/b");
  EXPECT_EQ(JoinPath("", "b"), "b");
  WriteAll(folder / "here", "");
  EXPECT_TRUE(FileExists(folder / "here"));
  EXPECT_FALSE(FileExists(folder / "there"));
  EXPECT_FALSE(FileExists(folder.path().string()));
}

TEST(Paths, PlainNamesStayInTheirFolder) {
  for (const char* name : {"town", "town 2", "-x", "a.b", "..x", "Gem\u00e4 \"q\" 'a'"})
    EXPECT_TRUE(IsPlainName(name)) << name;
  for (const char* name : {"", ".", "..", "../victim/thesis", "/etc/x", "a/b", "a\nb", "a\tb", "\x7f"})
    EXPECT_FALSE(IsPlainName(name)) << name;
  const TempDir folder;
  EXPECT_NE(TemporaryBeside(folder / "x", ".tmp"), TemporaryBeside(folder / "x", ".tmp"));
}

TEST(Files, APipeIsNeitherReadNorReplaced) {
  const TempDir folder;
  const std::string pipe = folder / "pipe.XTR";
  ASSERT_EQ(mkfifo(pipe.c_str(), 0666), 0);
  EXPECT_FALSE(FileExists(pipe));
  EXPECT_THROW(LineReader{pipe}, FileError);  // not waited for
  EXPECT_THROW(LineReader{"/dev/zero"}, FileError);
  EXPECT_THROW(TextFileWriter{pipe}, FileError);
  EXPECT_TRUE(std::filesystem::is_fifo(pipe));
}

TEST(Files, ALinkInThePlaceOfAWorkFileGoes) {
  const TempDir folder;
  const std::string thesis = folder / "thesis";
  const std::string link = folder / "Ormel.def";
  WriteAll(thesis, "years of work");
  std::filesystem::create_symlink(thesis, link);
  RemoveLink(link);
  RemoveLink(thesis);
  EXPECT_FALSE(std::filesystem::is_symlink(link));
  EXPECT_EQ(ReadAll(thesis), "years of work");
}

TEST(Csv, NoTextIsAFormula) {
  for (const auto& [text, field] : {std::pair{"=1+2", "'=1+2"},
                                    {"@x", "'@x"},
                                    {"-x", "'-x"},
                                    {" +x", "' +x"},
                                    {"-5.5", "-5.5"},
                                    {"+1e3", "+1e3"},
                                    {"-inf", "-inf"},
                                    {"a=b", "a=b"},
                                    {"", ""},
                                    {"=a,\"b\"", "\"'=a,\"\"b\"\"\""}})
    EXPECT_EQ(CsvField(text), field);
}

TEST(LineReader, TakesEveryLineEnd) {
  const TempDir folder;
  const std::string path = folder / "lines.txt";
  WriteAll(path, "a\r\nb\nc\rd\r\n\r\ne");
  EXPECT_THAT(Lines(path), ElementsAre("a", "b", "c", "d", "", "e"));
  WriteAll(path, "");
  EXPECT_THAT(Lines(path), ElementsAre());
  WriteAll(path, std::string(65535, 'x') + "\r\n" + std::string(70000, 'y'));  // line end across two reads
  EXPECT_THAT(Lines(path), ElementsAre(std::string(65535, 'x'), std::string(70000, 'y')));
}

TEST(LineReader, RefusesWhatItCannotRead) {
  const TempDir folder;
  EXPECT_THROW(LineReader(folder / "none.txt"), FileError);
  std::string line;
  LineReader a_folder(folder.path().string());
  EXPECT_THROW(a_folder.Next(line), FileError);
  const std::string path = folder / "long.txt";
  WriteAll(path, "first\n" + std::string(LineReader::kMaxLine + 1, 'x'));
  LineReader reader(path);
  EXPECT_TRUE(reader.Next(line));
  try {
    reader.Next(line);
    FAIL() << "a line without bounds was read";
  } catch (const FileError& error) {
    EXPECT_EQ(error.line(), 2U);
    EXPECT_THAT(error.what(), testing::HasSubstr(path + ", line 2: "));
  }
}

TEST(TextFileWriter, AppearsWholeOrNotAtAll) {
  const TempDir folder;
  const std::string path = folder / "deck.DAT";
  WriteAll(path, "old");
  {
    TextFileWriter writer(path);
    writer.Line("lost");
  }
  EXPECT_EQ(ReadAll(path), "old");
  TextFileWriter writer(path);
  writer.Line(" quit ");
  writer.Write(std::string(100000, 'x'));
  EXPECT_EQ(ReadAll(path), "old");
  writer.Commit();
  EXPECT_EQ(ReadAll(path), " quit \r\n" + std::string(100000, 'x'));
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path()), {}), 1);
}

TEST(TextFileWriter, SaysWhatWentWrong) {
  const TempDir folder;
  EXPECT_THROW(TextFileWriter(folder / "none/x.txt"), FileError);
  EXPECT_THROW(TextFileWriter(folder.path().string()), FileError);
  const std::string path = folder / "full.txt";
  WriteAll(path, "old");
  rlimit old{};
  getrlimit(RLIMIT_FSIZE, &old);
  const auto old_signal = std::signal(SIGXFSZ, SIG_IGN);
  const rlimit small{4096, old.rlim_max};
  setrlimit(RLIMIT_FSIZE, &small);
  try {
    TextFileWriter writer(path);
    for (int i = 0; i < 10000; ++i) writer.Line("a line of text");
    writer.Commit();
    ADD_FAILURE() << "a file beyond the limit was written";
  } catch (const FileError& error) {
    EXPECT_EQ(error.file(), path);
    EXPECT_THAT(error.reason(), testing::HasSubstr("cannot be written"));
  }
  setrlimit(RLIMIT_FSIZE, &old);
  std::signal(SIGXFSZ, old_signal);
  EXPECT_EQ(ReadAll(path), "old");
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path()), {}), 1);
}

}  // namespace
}  // namespace ormel
