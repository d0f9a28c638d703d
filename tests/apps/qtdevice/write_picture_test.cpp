// Picture files: they are what their extension says, and a failure is told and loses nothing.
#include "qtdevice/write_picture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>

#include <QImage>
#include <filesystem>
#include <vector>

#include "support/temp_dir.h"
#include "view/drawing_device.h"

namespace ormel {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

void DrawCross(DrawingDevice& device) {
  device.Clear(Rgb(255, 255, 255));
  const int right = device.Width() - 1, bottom = device.Height() - 1;
  const std::vector<DevicePoint> down{{0, 0}, {right, bottom}}, up{{0, bottom}, {right, 0}};
  device.Polyline(down, Pen{PenStyle::kSolid, 2.0, Rgb(200, 0, 0)});
  device.Polyline(up, Pen{PenStyle::kDash, 1.0, Rgb(0, 0, 200)});
  device.Text({device.Width() / 2, device.Height() / 2}, "Well 1", TextStyle{});
}

TEST(WritePicture, EachExtensionGivesItsKindOfFile) {
  const test::TempDir folder;
  struct Case {
    const char* name;
    const char* beginning;
  };
  for (const Case c : {Case{"map.png", "\x89PNG"}, Case{"map.SVG", "<?xml"}, Case{"map.pdf", "%PDF"}}) {
    const std::string path = folder / c.name;
    EXPECT_EQ(WritePicture(path, {400, 300, 96}, DrawCross), "");
    EXPECT_THAT(test::ReadAll(path), StartsWith(c.beginning)) << c.name;
  }
  const QImage image(QString::fromStdString(folder / "map.png"));
  EXPECT_EQ(image.size(), QSize(400, 300));
  EXPECT_NEAR(image.dotsPerMeterX(), 96 / 0.0254, 1.0);
  EXPECT_EQ(image.pixel(100, 75), qRgb(200, 0, 0));
  const std::string svg = test::ReadAll(folder / "map.SVG");
  EXPECT_THAT(svg, HasSubstr("viewBox=\"0 0 400 300\""));
  EXPECT_THAT(svg, HasSubstr("Well 1"));
  EXPECT_THAT(test::ReadAll(folder / "map.pdf"), HasSubstr("/MediaBox [0 0 300"));
}

TEST(WritePicture, RefusalsNameTheFileAndTheRemedy) {
  const test::TempDir folder;
  struct Case {
    std::string name;
    PictureSize size;
    const char* remedy;
  };
  const Case cases[] = {{"map.bmpx", {10, 10, 96}, ".png, .svg or .pdf"},
                        {"map", {10, 10, 96}, ".png, .svg or .pdf"},
                        {"no folder/map.png", {10, 10, 96}, "folder that exists"},
                        {"map.png", {0, 10, 96}, "pixels"},
                        {"map.png", {10, 40000, 96}, "pixels"}};
  for (const Case& c : cases) {
    const std::string message = WritePicture(folder / c.name, c.size, DrawCross);
    EXPECT_THAT(message, HasSubstr(c.name));
    EXPECT_THAT(message, HasSubstr(c.remedy));
  }
  EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
}

/// As a full disk does, the limit makes every write beyond the first bytes fail.
class SmallDisk {
 public:
  SmallDisk() {
    signal(SIGXFSZ, SIG_IGN);
    getrlimit(RLIMIT_FSIZE, &before_);
    rlimit tiny = before_;
    tiny.rlim_cur = 64;
    setrlimit(RLIMIT_FSIZE, &tiny);
  }
  ~SmallDisk() { setrlimit(RLIMIT_FSIZE, &before_); }
  SmallDisk(const SmallDisk&) = delete;
  SmallDisk& operator=(const SmallDisk&) = delete;

 private:
  rlimit before_{};
};

TEST(WritePicture, AFullDiskIsToldAndTheOldFileStands) {
  const test::TempDir folder;
  for (const char* name : {"map.png", "map.svg", "map.pdf"}) {
    test::WriteAll(folder / name, "old");
    std::string message;
    {
      const SmallDisk full;
      message = WritePicture(folder / name, {400, 300, 96}, DrawCross);
    }
    EXPECT_THAT(message, HasSubstr(name));
    EXPECT_THAT(message, HasSubstr("Make room on the disk"));
    EXPECT_EQ(test::ReadAll(folder / name), "old");
  }
  const auto files = std::distance(std::filesystem::directory_iterator(folder.path()), {});
  EXPECT_EQ(files, 3) << "a temporary file was left";
}

}  // namespace
}  // namespace ormel
