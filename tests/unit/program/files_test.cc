#include "program/files.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

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

TEST(Files, WhatStandsInAFileStaysUntilItIsEmptied) {
  Folder folder;
  std::FILE *file = openForWriting(folder.write("out", "old text").c_str());
  ASSERT_NE(file, nullptr);
  EXPECT_EQ(folder.read("out"), "old text");
  EXPECT_TRUE(emptyFile(file));
  EXPECT_EQ(folder.read("out"), "");
  std::fputs("new", file);
  std::fclose(file);
  EXPECT_EQ(folder.read("out"), "new");
}

TEST(Files, ANewFileIsMade) {
  Folder folder;
  std::FILE *file = openForWriting((folder / "out").c_str());
  ASSERT_NE(file, nullptr);
  EXPECT_TRUE(emptyFile(file));
  std::fclose(file);
  EXPECT_EQ(folder.read("out"), "");
}

TEST(Files, ADeviceHasNothingToEmpty) {
  std::FILE *file = openForWriting("/dev/null");
  ASSERT_NE(file, nullptr);
  EXPECT_TRUE(emptyFile(file));
  std::fclose(file);
  EXPECT_TRUE(emptyFile(nullptr));
}

TEST(Files, AnAbandonedFileKeepsItsText) {
  Folder folder;
  std::FILE *file = openForWriting(folder.write("out", "old text").c_str());
  ASSERT_NE(file, nullptr);
  std::fputs("new", file);
  abandonFile(file);
  std::fputs("er", file);
  EXPECT_TRUE(emptyFile(file));
  EXPECT_EQ(std::fclose(file), 0);
  EXPECT_EQ(folder.read("out"), "old text");
}

TEST(Files, AFolderOrAFileInAMissingFolderCannotBeWritten) {
  Folder folder;
  EXPECT_EQ(openForWriting((folder / ".").c_str()), nullptr);
  EXPECT_EQ(openForWriting((folder / "no/out").c_str()), nullptr);
  EXPECT_EQ(openForWriting(""), nullptr);
}

TEST(Files, AFileIsTheSameByAnyName) {
  Folder folder;
  std::string name = folder.write("in", "piece");
  std::filesystem::create_hard_link(name, folder / "hard");
  std::filesystem::create_symlink(name, folder / "soft");
  folder.write("copy", "piece");
  std::FILE *input = openForReading(name.c_str());
  for (const char *other : {"in", "./in", "hard", "soft"}) {
    EXPECT_TRUE(isSameFile((folder / other).c_str(), input)) << other;
    std::FILE *file = openForWriting((folder / other).c_str());
    EXPECT_TRUE(isOpenIn(file, {nullptr, input})) << other;
    std::fclose(file);
  }
  for (const char *other : {"copy", "missing"}) {
    EXPECT_FALSE(isSameFile((folder / other).c_str(), input)) << other;
  }
  std::fclose(input);
}

TEST(Files, TwoStreamsMayShareADeviceAndNothingIsLikeNoFile) {
  std::FILE *a = openForWriting("/dev/null");
  std::FILE *b = openForWriting("/dev/null");
  EXPECT_FALSE(isOpenIn(a, {b}));
  EXPECT_FALSE(isOpenIn(a, {nullptr}));
  EXPECT_FALSE(isOpenIn(nullptr, {nullptr}));
  std::fclose(a);
  std::fclose(b);
}

TEST(Files, OnlyAPlainFileIsIncludedAndItsSizeIsTold) {
  Folder folder;
  std::int64_t size = 0;
  std::FILE *file = openIncluded(folder.write("a", "xyz").c_str(), size);
  ASSERT_NE(file, nullptr);
  EXPECT_EQ(size, 3);
  EXPECT_EQ(std::getc(file), 'x');
  std::fclose(file);
  ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
  for (const std::string &name : {folder / "pipe", folder / ".", folder / "missing",
                                  std::string("/dev/zero"), std::string()}) {
    EXPECT_EQ(openIncluded(name.c_str(), size), nullptr) << name;
  }
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
