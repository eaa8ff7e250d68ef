// A folder of its own for a test, removed with all that is in it.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>

class Folder {
  std::filesystem::path path;

 public:
  Folder() {
    std::string name = (std::filesystem::temp_directory_path() / "korvo-test-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) {
      std::abort();
    }
    path = name;
  }
  Folder(const Folder &) = delete;
  Folder &operator=(const Folder &) = delete;
  ~Folder() {
    std::error_code ignored;
    std::filesystem::remove_all(path, ignored);
  }

  std::string operator/(std::string_view name) const { return (path / name).string(); }

  // Makes a file and gives its whole name.
  std::string write(std::string_view name, std::string_view text) const {
    std::string whole = *this / name;
    std::FILE *file = std::fopen(whole.c_str(), "wb");
    if (file == nullptr || std::fwrite(text.data(), 1, text.size(), file) != text.size() ||
        std::fclose(file) != 0) {
      std::abort();
    }
    return whole;
  }

  std::string read(std::string_view name) const {
    std::FILE *file = std::fopen((*this / name).c_str(), "rb");
    if (file == nullptr) {
      return "(no file)";
    }
    std::string text;
    for (int c = std::getc(file); c != EOF; c = std::getc(file)) {
      text += static_cast<char>(c);
    }
    std::fclose(file);
    return text;
  }
};
