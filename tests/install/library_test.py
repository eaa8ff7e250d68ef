#!/usr/bin/env python3
"""The library as another project finds it: installed, built against by CMake and by pkg-config, and moved about.

    library_test.py CMAKE COMPILER BUILD_FOLDER
"""

import os
import shlex
import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

CMAKE, COMPILER, BUILD = None, None, None
PROGRAM = Path(__file__).resolve().parent / "ten_lines.cc"

# The block starts at .5, the second event .25 later; each lasts 1.5 times that. c4 is 48 semitones, a nine more.
SCORE = "\n;I-block #1 (i3):\ni3    0.500  0.375    48.000 \ni3    0.750  0.375    57.000 \n\ne\n"

PROJECT = """cmake_minimum_required(VERSION 3.21)
project(elsewhere LANGUAGES CXX)
find_package(korvo {version} REQUIRED)
add_executable(ten_lines ten_lines.cc)
target_link_libraries(ten_lines PRIVATE korvo::korvo)
"""

WARNINGS = ["-Wall", "-Wextra", "-Wpedantic", "-Wconversion", "-Wshadow", "-Werror"]


def run(*command, **options):
    """What a command prints; when it fails the test does, with all that was said."""
    done = subprocess.run(command, capture_output=True, text=True, timeout=120, **options)
    if done.returncode != 0:
        raise AssertionError(f"{command}: status {done.returncode}\n{done.stdout}{done.stderr}")
    return done.stdout


class InstalledLibrary(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        holder = tempfile.TemporaryDirectory(prefix="korvo-install-")
        cls.addClassCleanup(holder.cleanup)
        cls.root = Path(holder.name)
        # Installed in one place, used in another: nothing in it may know where it once was.
        first = cls.root / "installed here"
        run(CMAKE, "--install", BUILD, "--prefix", first)
        cls.prefix = cls.root / "moved there"
        first.rename(cls.prefix)
        (config,) = cls.prefix.rglob("korvo.pc")
        cls.pkgconfig = config.parent
        cls.environment = dict(os.environ, PKG_CONFIG_PATH=str(cls.pkgconfig))

    def project(self, name, version=""):
        folder = self.root / name
        folder.mkdir()
        shutil.copy(PROGRAM, folder)
        (folder / "CMakeLists.txt").write_text(PROJECT.format(version=version))
        return folder

    def configure(self, folder):
        return [CMAKE, "-S", folder, "-B", folder / "build", f"-DCMAKE_PREFIX_PATH={self.prefix}",
                f"-DCMAKE_CXX_COMPILER={COMPILER}"]

    def pkg_config(self, *options):
        return shlex.split(run("pkg-config", *options, "korvo", env=self.environment))

    def test_ten_lines_and_they_are_those_of_the_readme(self):
        lines = PROGRAM.read_text().splitlines(keepends=True)
        self.assertEqual(len(lines), 10)
        readme = (PROGRAM.parents[2] / "README.md").read_text()
        self.assertIn("".join("    " + line if line.strip() else line for line in lines), readme)

    def test_cmake_package(self):
        folder = self.project("cmake", "2.1.3")
        run(*self.configure(folder))
        run(CMAKE, "--build", folder / "build")
        self.assertEqual(run(folder / "build" / "ten_lines"), SCORE)

    def test_cmake_package_of_another_major_version_is_not_taken(self):
        for version, name in (("1.0", "older"), ("3.0", "newer")):
            folder = self.project(name, version)
            done = subprocess.run(self.configure(folder), capture_output=True, text=True, timeout=120)
            self.assertNotEqual(done.returncode, 0)
            self.assertIn("compatible", done.stderr)

    def test_pkg_config(self):
        program = self.root / "by pkg-config"
        run(COMPILER, PROGRAM, "-o", program, *self.pkg_config("--cflags", "--libs"))
        self.assertEqual(run(program), SCORE)

    def test_versions_agree(self):
        (version,) = self.pkg_config("--modversion")
        (file,) = self.prefix.rglob("korvoConfigVersion.cmake")
        self.assertIn(f'set(PACKAGE_VERSION "{version}")', file.read_text())
        piece, output = self.root / "piece.txt", self.root / "piece.sco"
        piece.write_text("i1 = 3 0 -1 { p2 1 p3 1 }")
        done = subprocess.run([self.prefix / "bin" / "korvo", piece, output], capture_output=True, text=True)
        self.assertIn(f"Korvo ({version},", done.stderr)

    def test_nothing_in_it_knows_a_place(self):
        places = [str(self.root).encode(), str(BUILD).encode(), str(PROGRAM.parents[2]).encode()]
        for file in self.prefix.rglob("*"):
            if file.is_file() and file.suffix in (".cmake", ".pc", ".h"):
                for place in places:
                    self.assertNotIn(place, file.read_bytes(), file)

    def test_what_is_installed(self):
        names = sorted(file.name for file in self.prefix.rglob("*") if file.is_file())
        config = [name for name in names if name.startswith("korvoConfig")]
        self.assertEqual(len(config), 3, names)  # targets, those of the build type, version
        self.assertEqual(sorted(set(names) - set(config)), ["korvo", "korvo.h", "korvo.pc", "libkorvo.a"])

    def test_header_stands_alone(self):
        source = self.root / "header.cc"
        source.write_text("#include <korvo/korvo.h>\n#include <korvo/korvo.h>\n")
        for standard in ("c++17", "c++20"):
            run(COMPILER, f"-std={standard}", *WARNINGS, "-fsyntax-only", source, *self.pkg_config("--cflags"))


if __name__ == "__main__":
    BUILD = Path(sys.argv.pop(3)).resolve()
    COMPILER = sys.argv.pop(2)
    CMAKE = sys.argv.pop(1)
    unittest.main()
