#include "base/output_buffer.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstring>
#include <memory>
#include <random>
#include <string>

#include "support/memory_file.h"

namespace {

TEST(OutputBuffer, EverythingArrivesInItsOrder) {
  std::mt19937 random(1);
  std::string expected;
  MemoryFile file;
  auto buffer = std::make_unique<OutputBuffer>();
  buffer->file = file.file();
  for (int i = 0; i < 2000; ++i) {
    std::string piece(random() % 4097, static_cast<char>('a' + i % 26));
    if (i % 2 == 0) {
      append(*buffer, piece.data(), piece.size());
    } else {
      char *place = room(*buffer, piece.size());
      std::memcpy(place, piece.data(), piece.size());
      taken(*buffer, place + piece.size());
    }
    expected += piece;
  }
  EXPECT_TRUE(closeOutput(*buffer, true));
  file.wasClosed();
  EXPECT_TRUE(file.text() == expected);
}

TEST(OutputBuffer, AnyByteMayBeWritten) {
  std::string bytes;
  for (int c = 0; c < 256; ++c) {
    bytes += static_cast<char>(c);
  }
  MemoryFile file;
  auto buffer = std::make_unique<OutputBuffer>();
  buffer->file = file.file();
  append(*buffer, bytes.data(), bytes.size());
  append(*buffer, bytes.data(), 0);
  EXPECT_TRUE(closeOutput(*buffer, true));
  file.wasClosed();
  EXPECT_EQ(file.text(), bytes);
}

TEST(OutputBuffer, RoomThatIsNotTakenIsNotWritten) {
  MemoryFile file;
  auto buffer = std::make_unique<OutputBuffer>();
  buffer->file = file.file();
  for (int i = 0; i < 100; ++i) {
    char *place = room(*buffer, 4096);
    std::memset(place, 'x', 4096);
    *place = 'y';
    taken(*buffer, place + 1);
  }
  EXPECT_TRUE(closeOutput(*buffer, true));
  file.wasClosed();
  EXPECT_EQ(file.text(), std::string(100, 'y'));
}

TEST(OutputBuffer, ClosingTwiceOrWithoutAFileIsFine) {
  auto buffer = std::make_unique<OutputBuffer>();
  EXPECT_TRUE(closeOutput(*buffer, true));
  MemoryFile file;
  buffer->file = file.file();
  append(*buffer, "abc", 3);
  EXPECT_TRUE(closeOutput(*buffer, true));
  file.wasClosed();
  EXPECT_EQ(buffer->file, nullptr);
  EXPECT_TRUE(closeOutput(*buffer, true));
  EXPECT_EQ(file.text(), "abc");
}

// A device that takes nothing.
TEST(OutputBuffer, AFailedWriteIsRemembered) {
  for (std::size_t pieces : {1U, 100U, 5000U}) {
    std::FILE *full = std::fopen("/dev/full", "w");
    ASSERT_NE(full, nullptr);
    auto buffer = std::make_unique<OutputBuffer>();
    buffer->file = full;
    for (std::size_t i = 0; i < pieces; ++i) {
      append(*buffer, "0123456789012345678901234567890123456789", 40);
    }
    EXPECT_FALSE(closeOutput(*buffer, true)) << pieces;
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

TEST(OutputBuffer, AnOlderTextStaysUntilTheFirstByte) {
  struct {
    const char *written;
    bool endedWell;
    const char *expected;
  } rows[] = {
      {"", false, "an older text"}, {"", true, ""}, {"new", false, "new"}, {"new", true, "new"}};
  for (const auto &row : rows) {
    auto buffer = std::make_unique<OutputBuffer>();
    buffer->file = olderFile();
    int descriptor = dup(fileno(buffer->file));
    append(*buffer, row.written, std::strlen(row.written));
    EXPECT_EQ(contents(descriptor), "an older text");
    EXPECT_TRUE(closeOutput(*buffer, row.endedWell));
    EXPECT_EQ(contents(descriptor), row.expected) << row.written << row.endedWell;
    close(descriptor);
  }
}

TEST(OutputBuffer, AnUntouchedFileThatTakesNothingIsComplete) {
  std::FILE *full = std::fopen("/dev/full", "w");
  ASSERT_NE(full, nullptr);
  auto buffer = std::make_unique<OutputBuffer>();
  buffer->file = full;
  EXPECT_TRUE(closeOutput(*buffer, true));
}

}  // namespace
