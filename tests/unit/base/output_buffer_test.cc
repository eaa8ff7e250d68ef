#include "base/output_buffer.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace korvo {

namespace {

// A buffer and what its listener has got, block by block.
struct Heard {
  std::unique_ptr<OutputBuffer> buffer = std::make_unique<OutputBuffer>();
  std::vector<std::string> blocks;

  Heard() {
    buffer->listener.context = this;
    buffer->listener.output = [](void *context, const char *bytes, std::size_t size) {
      static_cast<Heard *>(context)->blocks.emplace_back(bytes, size);
    };
  }
  Heard(const Heard &) = delete;
  Heard &operator=(const Heard &) = delete;

  std::string all() {
    flushOutput(*buffer);
    std::string joined;
    for (const std::string &block : blocks) {
      joined += block;
    }
    return joined;
  }
};

TEST(OutputBuffer, EverythingArrivesInItsOrder) {
  std::mt19937 random(1);
  std::string expected;
  Heard heard;
  for (int i = 0; i < 2000; ++i) {
    std::string piece(random() % 4097, static_cast<char>('a' + i % 26));
    if (i % 2 == 0) {
      append(*heard.buffer, piece.data(), piece.size());
    } else {
      char *place = room(*heard.buffer, piece.size());
      std::memcpy(place, piece.data(), piece.size());
      taken(*heard.buffer, place + piece.size());
    }
    expected += piece;
  }
  EXPECT_TRUE(heard.all() == expected);
  EXPECT_LT(heard.blocks.size(), expected.size() / (sizeof heard.buffer->bytes - 4096) + 2);
}

TEST(OutputBuffer, AnyByteMayBeWritten) {
  std::string bytes;
  for (int c = 0; c < 256; ++c) {
    bytes += static_cast<char>(c);
  }
  Heard heard;
  append(*heard.buffer, bytes.data(), bytes.size());
  append(*heard.buffer, bytes.data(), 0);
  EXPECT_EQ(heard.all(), bytes);
}

TEST(OutputBuffer, RoomThatIsNotTakenIsNotWritten) {
  Heard heard;
  for (int i = 0; i < 100; ++i) {
    char *place = room(*heard.buffer, 4096);
    std::memset(place, 'x', 4096);
    *place = 'y';
    taken(*heard.buffer, place + 1);
  }
  EXPECT_EQ(heard.all(), std::string(100, 'y'));
}

TEST(OutputBuffer, WhatIsGatheredIsHandedOverOnce) {
  Heard heard;
  flushOutput(*heard.buffer);
  append(*heard.buffer, "abc", 3);
  EXPECT_TRUE(heard.blocks.empty());
  flushOutput(*heard.buffer);
  flushOutput(*heard.buffer);
  EXPECT_EQ(heard.blocks, std::vector<std::string>{"abc"});
}

TEST(OutputBuffer, NobodyNeedListen) {
  auto buffer = std::make_unique<OutputBuffer>();
  std::string piece(4096, 'x');
  for (int i = 0; i < 100; ++i) {
    append(*buffer, piece.data(), piece.size());
  }
  flushOutput(*buffer);
  EXPECT_EQ(buffer->used, 0U);
}

}  // namespace

}  // namespace korvo
