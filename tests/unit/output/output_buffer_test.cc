#include "output/output_buffer.h"

#include <gtest/gtest.h>

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
  EXPECT_TRUE(closeOutput(*buffer));
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
  EXPECT_TRUE(closeOutput(*buffer));
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
  EXPECT_TRUE(closeOutput(*buffer));
  file.wasClosed();
  EXPECT_EQ(file.text(), std::string(100, 'y'));
}

TEST(OutputBuffer, ClosingTwiceOrWithoutAFileIsFine) {
  auto buffer = std::make_unique<OutputBuffer>();
  EXPECT_TRUE(closeOutput(*buffer));
  MemoryFile file;
  buffer->file = file.file();
  append(*buffer, "abc", 3);
  EXPECT_TRUE(closeOutput(*buffer));
  file.wasClosed();
  EXPECT_EQ(buffer->file, nullptr);
  EXPECT_TRUE(closeOutput(*buffer));
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
    EXPECT_FALSE(closeOutput(*buffer)) << pieces;
  }
}

TEST(OutputBuffer, AnUntouchedFileThatTakesNothingIsComplete) {
  std::FILE *full = std::fopen("/dev/full", "w");
  ASSERT_NE(full, nullptr);
  auto buffer = std::make_unique<OutputBuffer>();
  buffer->file = full;
  EXPECT_TRUE(closeOutput(*buffer));
}

}  // namespace
