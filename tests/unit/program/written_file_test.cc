#include "program/written_file.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstring>
#include <memory>
#include <random>
#include <string>

#include "support/memory_file.h"

namespace {

TEST(WrittenFile, EverythingArrivesInItsOrder) {
  std::mt19937 random(1);
  std::string expected;
  MemoryFile file;
  auto written = std::make_unique<WrittenFile>();
  written->file = file.file();
  for (int i = 0; i < 2000; ++i) {
    std::string piece(random() % 4097, static_cast<char>('a' + i % 26));
    if (i % 100 == 0) {
      piece.append(sizeof written->bytes, 'z');  // longer than all that can be gathered
    }
    writeBytes(*written, piece.data(), piece.size());
    expected += piece;
  }
  EXPECT_TRUE(closeWritten(*written, true));
  file.wasClosed();
  EXPECT_TRUE(file.text() == expected);
}

TEST(WrittenFile, AnyByteMayBeWritten) {
  std::string bytes;
  for (int c = 0; c < 256; ++c) {
    bytes += static_cast<char>(c);
  }
  MemoryFile file;
  auto written = std::make_unique<WrittenFile>();
  written->file = file.file();
  writeBytes(*written, bytes.data(), bytes.size());
  writeBytes(*written, bytes.data(), 0);
  EXPECT_TRUE(closeWritten(*written, true));
  file.wasClosed();
  EXPECT_EQ(file.text(), bytes);
}

TEST(WrittenFile, ClosingTwiceOrWithoutAFileIsFine) {
  auto written = std::make_unique<WrittenFile>();
  EXPECT_TRUE(closeWritten(*written, true));
  MemoryFile file;
  written->file = file.file();
  writeBytes(*written, "abc", 3);
  EXPECT_TRUE(closeWritten(*written, true));
  file.wasClosed();
  EXPECT_EQ(written->file, nullptr);
  EXPECT_TRUE(closeWritten(*written, true));
  EXPECT_EQ(file.text(), "abc");
}

// A device that takes nothing.
TEST(WrittenFile, AFailedWriteIsRemembered) {
  for (std::size_t pieces : {1U, 100U, 5000U}) {
    std::FILE *full = std::fopen("/dev/full", "w");
    ASSERT_NE(full, nullptr);
    auto written = std::make_unique<WrittenFile>();
    written->file = full;
    for (std::size_t i = 0; i < pieces; ++i) {
      writeBytes(*written, "0123456789012345678901234567890123456789", 40);
    }
    EXPECT_FALSE(closeWritten(*written, true)) << pieces;
  }
}

// A temporary file in which an older text stands.
std::FILE *olderFile() {
  std::FILE *file = std::tmpfile();
  std::fputs("an older text", file);
  std::rewind(file);
  return file;
}

// What stands in the file behind the stream.
std::string contents(int descriptor) {
  char text[64];
  ssize_t length = pread(descriptor, text, sizeof text, 0);
  return {text, static_cast<std::size_t>(length)};
}

TEST(WrittenFile, AnOlderTextStaysUntilTheFirstByte) {
  struct {
    const char *written;
    bool endedWell;
    const char *expected;
  } rows[] = {
      {"", false, "an older text"}, {"", true, ""}, {"new", false, "new"}, {"new", true, "new"}};
  for (const auto &row : rows) {
    auto written = std::make_unique<WrittenFile>();
    written->file = olderFile();
    int descriptor = dup(fileno(written->file));
    writeBytes(*written, row.written, std::strlen(row.written));
    EXPECT_EQ(contents(descriptor), "an older text");
    EXPECT_TRUE(closeWritten(*written, row.endedWell));
    EXPECT_EQ(contents(descriptor), row.expected) << row.written << row.endedWell;
    close(descriptor);
  }
}

TEST(WrittenFile, AnUntouchedFileThatTakesNothingIsComplete) {
  std::FILE *full = std::fopen("/dev/full", "w");
  ASSERT_NE(full, nullptr);
  auto written = std::make_unique<WrittenFile>();
  written->file = full;
  EXPECT_TRUE(closeWritten(*written, true));
}

}  // namespace
