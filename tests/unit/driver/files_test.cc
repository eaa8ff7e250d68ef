#include "driver/files.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <string>

#include "support/folder.h"

namespace {

TEST(Files, ReadingGivesTheText) {
  Folder folder;
  std::FILE *file = openForReading(folder.write("a", "xyz").c_str());
  ASSERT_NE(file, nullptr);
  EXPECT_EQ(std::getc(file), 'x');
  std::fclose(file);
}

TEST(Files, AnEmptyFileCanBeRead) {
  Folder folder;
  std::FILE *file = openForReading(folder.write("a", "").c_str());
  ASSERT_NE(file, nullptr);
  EXPECT_EQ(std::getc(file), EOF);
  std::fclose(file);
}

TEST(Files, WhatIsNotThereOrIsAFolderCannotBeRead) {
  Folder folder;
  EXPECT_EQ(openForReading((folder / "missing").c_str()), nullptr);
  EXPECT_EQ(openForReading((folder / ".").c_str()), nullptr);
  EXPECT_EQ(openForReading(""), nullptr);
  EXPECT_EQ(openForReading("/"), nullptr);
}

TEST(Files, WritingReplacesWhatWasThere) {
  Folder folder;
  std::FILE *input = openForReading(folder.write("in", "piece").c_str());
  folder.write("out", "old text");
  for (const char *mode : {"w", "wb"}) {
    std::FILE *file = openForWriting((folder / "out").c_str(), mode, input);
    ASSERT_NE(file, nullptr);
    std::fputs("new", file);
    std::fclose(file);
    EXPECT_EQ(folder.read("out"), "new");
  }
  std::fclose(input);
}

TEST(Files, AFolderOrAFileInAMissingFolderCannotBeWritten) {
  Folder folder;
  std::FILE *input = openForReading(folder.write("in", "piece").c_str());
  EXPECT_EQ(openForWriting((folder / ".").c_str(), "w", input), nullptr);
  EXPECT_EQ(openForWriting((folder / "no/out").c_str(), "w", input), nullptr);
  EXPECT_EQ(openForWriting("", "w", input), nullptr);
  std::fclose(input);
}

TEST(Files, TheInputIsNeverOpenedForWriting) {
  Folder folder;
  std::string name = folder.write("in", "piece");
  std::filesystem::create_hard_link(name, folder / "hard");
  std::filesystem::create_symlink(name, folder / "soft");
  std::FILE *input = openForReading(name.c_str());
  for (const char *other : {"in", "./in", "hard", "soft"}) {
    EXPECT_EQ(openForWriting((folder / other).c_str(), "w", input), nullptr) << other;
    EXPECT_EQ(openForWriting((folder / other).c_str(), "wb", input), nullptr) << other;
  }
  std::fclose(input);
  EXPECT_EQ(folder.read("in"), "piece");
}

TEST(Files, ACopyOfTheInputIsAnotherFile) {
  Folder folder;
  std::FILE *input = openForReading(folder.write("in", "piece").c_str());
  std::FILE *file = openForWriting(folder.write("copy", "piece").c_str(), "w", input);
  EXPECT_NE(file, nullptr);
  if (file != nullptr) {
    std::fclose(file);
  }
  std::fclose(input);
}

TEST(Files, ATemporaryFileIsWrittenAndReadBack) {
  std::FILE *file = openTemporary();
  ASSERT_NE(file, nullptr);
  std::fputs("text\n", file);
  ASSERT_EQ(std::fseek(file, 0, SEEK_SET), 0);
  char line[16];
  ASSERT_NE(std::fgets(line, sizeof line, file), nullptr);
  EXPECT_STREQ(line, "text\n");
  EXPECT_EQ(std::fgets(line, sizeof line, file), nullptr);
  std::fclose(file);
}

}  // namespace
