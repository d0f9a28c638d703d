// The user's settings as a text file.
#include "platform/file_settings.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "support/temp_dir.h"
#include "text/files.h"

namespace ormel::test {
namespace {

TEST(FileSettings, KeepsValuesAndForeignLines) {
  TempDir dir;
  const std::string path = dir / "deep/er/settings.ini";
  FileSettings settings(path);
  EXPECT_EQ(settings.GetSetting("Top", "0"), "0");
  for (const char* value : {"12.5", "", " two\nlines \\n = [x]", "Größe"}) {
    settings.SaveSetting("Top", value);
    EXPECT_EQ(FileSettings(path).GetSetting("tOP", "0"), value);
  }
  settings.SaveSetting("Left", "3");
  EXPECT_EQ(settings.GetSetting("Top", "0"), "Größe");

  WriteAll(path, "; mine\n[Other]\nTop=1\n\n[Startup]\nLeft = 4\nkept\n\n[Last]\nTop=9");
  settings.SaveSetting("Top", "2");
  EXPECT_EQ(
      ReadAll(path),
      "; mine\r\n[Other]\r\nTop=1\r\n\r\n[Startup]\r\nLeft = 4\r\nkept\r\nTop=2\r\n\r\n[Last]\r\nTop=9\r\n");
  EXPECT_EQ(settings.GetSetting("Top", "0"), "2");
  EXPECT_EQ(settings.GetSetting("Left", "0"), " 4");
}

TEST(FileSettings, TellAFileThatCannotBeWritten) {
  TempDir dir;
  WriteAll(dir / "file", "x");
  FileSettings settings(dir / "file/settings.ini");
  EXPECT_EQ(settings.GetSetting("Top", "7"), "7");
  EXPECT_THROW(settings.SaveSetting("Top", "1"), FileError);
}

TEST(FileSettings, StandInTheUsersConfigurationFolder) {
  setenv("XDG_CONFIG_HOME", "/cfg", 1);
  EXPECT_EQ(FileSettings().path(), "/cfg/VADOX2K/settings.ini");
  setenv("XDG_CONFIG_HOME", "relative", 1);
  setenv("HOME", "/home/ann", 1);
  EXPECT_EQ(FileSettings().path(), "/home/ann/.config/VADOX2K/settings.ini");
}

}  // namespace
}  // namespace ormel::test
