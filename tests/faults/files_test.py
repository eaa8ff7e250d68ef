#!/usr/bin/env python3
"""Files that cannot be opened, read or written: a clear message, status 1, and nothing of the composer's harmed.

    files_test.py KORVO_BINARY
"""

import os
import resource
import stat
import subprocess
import time

import support
from clock import HANG
from support import PIECE, SCORE, cannot_open, cannot_write

NOBODY = 65534
TEMPORARY_LOST = b"\nERROR: Ouch! Can't open the temporary file (huh?).\n\n"


def many_events(count):
    return f"i1 = 3 0 -{count} {{ p2 1 p3 1 }}\n".encode()


def limit(name, value):
    return lambda: resource.setrlimit(name, (value, value))


class CannotWrite(support.FaultTest):
    """A full disk, a closed pipe, a file that may not grow."""

    def expect_told(self, result, *names):
        self.assertEqual(result.returncode, 1)
        for name in names:
            self.assertIn(cannot_write(name), result.stderr)

    def test_full_disk(self):
        for size in (1, 100, 20000):
            self.write("piece.txt", many_events(size))
            self.expect_told(self.run_korvo("piece.txt", "/dev/full"), "/dev/full")
            self.expect_told(self.run_korvo("-m", "piece.txt", "/dev/full"), "/dev/full")
            self.expect_told(self.run_korvo("-x/dev/full", "piece.txt", "a.sco"), "/dev/full")

    def test_full_disk_for_everything(self):
        result = self.run_korvo("-l/dev/full", "-x/dev/./full", "piece.txt", "/dev/.//full")
        self.expect_told(result, "/dev/./full", "/dev/.//full")
        self.assertNotIn(cannot_write("/dev/full"), result.stderr)

    def test_full_log_is_passed_over(self):
        """A log repeats what the screen says: that it cannot be written is not told and changes no status."""
        for piece, status in ((PIECE, 0), (b"> kept\n}\n", 1), (many_events(20000), 0)):
            self.write("piece.txt", piece)
            plain = self.run_korvo("piece.txt", "a.sco")
            score = self.read("a.sco")
            result = self.run_korvo("-l", "/dev/full", "piece.txt", "a.sco")
            self.assertEqual((plain.returncode, result.returncode), (status, status))
            self.assertEqual(result.stderr.replace(b'Log \t= "/dev/full"\n', b""), plain.stderr)
            self.assertEqual(self.read("a.sco"), score)

    def test_closed_pipe_as_output(self):
        for size in (1, 100, 20000):
            self.write("piece.txt", many_events(size))
            reader, writer = os.pipe()
            os.close(reader)
            result = self.run_korvo("piece.txt", "/dev/stdout", stdout=writer)
            os.close(writer)
            self.expect_told(result, "/dev/stdout")

    def test_pipe_closed_while_writing(self):
        self.write("piece.txt", many_events(200000))
        process = subprocess.Popen([support.KORVO, "piece.txt", "/dev/stdout"], cwd=self.folder,
                                   stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        self.assertEqual(process.stdout.read(11), b"\n;I-block #")
        process.stdout.close()
        message = process.stderr.read()
        process.stderr.close()
        self.assertEqual(process.wait(HANG), 1)
        self.assertIn(cannot_write("/dev/stdout"), message)

    def test_closed_pipe_for_messages(self):
        """Nobody listens; the score is right all the same."""
        reader, writer = os.pipe()
        os.close(reader)
        result = self.run_korvo("piece.txt", "a.sco", stderr=writer)
        os.close(writer)
        self.assertEqual(result.returncode, 0)
        self.assertEqual(self.read("a.sco"), SCORE)

    def test_full_disk_for_messages(self):
        with open("/dev/full", "wb") as full:
            result = self.run_korvo("piece.txt", "a.sco", stderr=full)
        self.assertEqual(result.returncode, 0)
        self.assertEqual(self.read("a.sco"), SCORE)

    def test_file_may_not_grow(self):
        self.write("piece.txt", many_events(20000))
        result = self.run_korvo("piece.txt", "a.sco", preexec_fn=limit(resource.RLIMIT_FSIZE, 4096))
        self.expect_told(result, "a.sco")

    def test_temporary_file_may_not_grow(self):
        self.write("piece.txt", b"; a comment\n" * 10000 + PIECE)
        result = self.run_korvo("piece.txt", "a.sco", preexec_fn=limit(resource.RLIMIT_FSIZE, 4096))
        self.assertEqual(result.returncode, 1)
        self.assertTrue(result.stderr.endswith(TEMPORARY_LOST), result.stderr)


class CannotOpen(support.FaultTest):
    def expect_refused(self, name, *arguments, **options):
        result = self.run_korvo(*arguments, **options)
        self.assertEqual((result.returncode, result.stdout, result.stderr), (1, b"", cannot_open(name)))

    def test_input(self):
        (self.folder / "folder").mkdir()
        os.symlink("nowhere", self.folder / "dangling")
        os.symlink("circle", self.folder / "circle")
        for name in ("missing.txt", "no/piece.txt", "folder", "folder/", "dangling", "circle", "piece.txt/x", "",
                     "x" * 5000):
            self.expect_refused(name, name, "a.sco")
            self.assertFalse((self.folder / "a.sco").exists())

    def test_written_files(self):
        (self.folder / "folder").mkdir()
        os.symlink("circle", self.folder / "circle")
        os.symlink("no/where", self.folder / "dangling")
        for name in ("no/a", "folder", "folder/", "circle", "dangling", "piece.txt/a", "", "x" * 5000):
            self.expect_refused(name, "piece.txt", name)
            self.expect_refused(name, "-m", "piece.txt", name)
            if name:
                self.expect_refused(name, "-x", name, "piece.txt", "a.sco")
                self.expect_refused(name, "-l", name, "piece.txt", "a.sco")
        self.assertEqual(self.read("piece.txt"), PIECE)

    def test_output_through_a_link_to_a_new_file(self):
        os.symlink("new.sco", self.folder / "link")
        self.assertEqual(self.run_korvo("piece.txt", "link").returncode, 0)
        self.assertEqual(self.read("new.sco"), SCORE)

    def as_nobody(self, name, *arguments):
        def give_up_rights():
            os.setgroups([])
            os.setgid(NOBODY)
            os.setuid(NOBODY)

        self.expect_refused(name, *arguments, preexec_fn=give_up_rights)

    def test_no_permission(self):
        if os.geteuid() != 0:
            self.skipTest("needs to be root to become nobody")
        os.chmod(self.folder, 0o755)
        self.write("secret.txt", PIECE)
        self.write("locked.sco", b"kept")
        os.chmod(self.folder / "secret.txt", 0o600)
        os.chmod(self.folder / "locked.sco", 0o444)
        self.as_nobody("secret.txt", "secret.txt", "/dev/null")
        self.as_nobody("locked.sco", "piece.txt", "locked.sco")
        self.as_nobody("new.sco", "piece.txt", "new.sco")
        self.as_nobody("new.exp", "-x", "new.exp", "piece.txt", "/dev/null")
        self.as_nobody("new.log", "-l", "new.log", "piece.txt", "/dev/null")
        self.assertEqual(self.read("locked.sco"), b"kept")

    def test_unwritable_temporary_folder(self):
        read_only = "mount --bind /tmp /tmp && mount -o remount,ro,bind /tmp"
        if subprocess.run(["unshare", "-rm", "sh", "-c", read_only], capture_output=True).returncode != 0:
            self.skipTest("needs to be allowed name spaces of its own")
        result = subprocess.run(
            ["unshare", "-rm", "sh", "-c", read_only + ' && exec "$0" "$@"', support.KORVO, "piece.txt", "a.sco"],
            cwd=self.folder, capture_output=True)
        self.assertEqual((result.returncode, result.stderr), (1, b"\nERROR: Can't open temporary file\n\n"))

    def test_unreadable_input(self):
        """A file that can be opened but not read, as on a bad disk: the program's own memory, which begins with nothing."""
        result = self.run_korvo("/proc/self/mem", "a.sco")
        self.assertEqual(result.returncode, 1)
        self.assertTrue(result.stderr.endswith(b"\nERROR: Can't read an input file.\n\n"), result.stderr)

    def test_include_that_would_block(self):
        os.mkfifo(self.folder / "pipe")
        self.write("piece.txt", b"#include |pipe|\n" + PIECE)
        result = self.run_korvo("piece.txt", "a.sco")
        self.assertEqual(result.returncode, 1)
        self.assertTrue(result.stderr.endswith(b'\nBad include file name: "pipe"\n\n'), result.stderr)

    def test_out_of_file_handles(self):
        """With ever more handles left, each file in turn is the one that cannot be opened. (With fewer than four the
        program cannot be loaded.)"""
        self.write("part.txt", b"; nothing\n")
        self.write("piece.txt", b"#include |part.txt|\n" + PIECE)
        expected = [
            cannot_open("a.sco"),
            cannot_open("a.exp"),
            b"\nERROR: Can't open temporary file\n\n",
            cannot_open("a.log"),
            b'\nBad include file name: "part.txt"\n\n',
        ]
        for handles, message in enumerate(expected, start=4):
            with self.subTest(handles=handles):
                result = self.run_korvo("-l", "a.log", "-x", "a.exp", "piece.txt", "a.sco",
                                        preexec_fn=limit(resource.RLIMIT_NOFILE, handles))
                self.assertEqual(result.returncode, 1)
                self.assertTrue(result.stderr.endswith(message), result.stderr)
        result = self.run_korvo("-l", "a.log", "-x", "a.exp", "piece.txt", "a.sco",
                                preexec_fn=limit(resource.RLIMIT_NOFILE, 4 + len(expected)))
        self.assertEqual(result.returncode, 0)
        self.assertEqual(self.read("a.sco"), SCORE)


class InputIsOutput(support.FaultTest):
    """The input by another name is never opened for writing."""

    def setUp(self):
        super().setUp()
        os.symlink("piece.txt", self.folder / "link")
        os.symlink("link", self.folder / "link-to-link")
        os.link(self.folder / "piece.txt", self.folder / "hard")
        (self.folder / "sub").mkdir()
        self.names = ["./piece.txt", "sub/../piece.txt", str(self.folder / "piece.txt"), "link", "link-to-link",
                      "hard", "/proc/self/cwd/piece.txt"]

    def expect_kept(self, name, result):
        self.assertEqual((result.returncode, result.stderr), (1, cannot_open(name)))
        self.assertEqual(self.read("piece.txt"), PIECE)

    def test_output(self):
        for name in self.names:
            self.expect_kept(name, self.run_korvo("piece.txt", name))
            self.expect_kept(name, self.run_korvo("-m", "piece.txt", name))

    def test_log(self):
        for name in self.names:
            self.expect_kept(name, self.run_korvo("-l", name, "piece.txt", "a.sco"))

    def test_expansion(self):
        for name in self.names:
            self.expect_kept(name, self.run_korvo("-x", name, "piece.txt", "a.sco"))

    def test_an_old_score_is_kept_too(self):
        for name in self.names:
            for option in "-l", "-x":
                self.write("a.sco", b"old score")
                self.expect_kept(name, self.run_korvo(option, name, "piece.txt", "a.sco"))
                self.assertEqual(self.read("a.sco"), b"old score")

    def test_include(self):
        """An included file that would be written, by whatever name, is no include, and keeps its text."""
        self.write("part.txt", b"te(90)\n")
        self.write("piece.txt", b"; " + b"x" * 70000 + b"\n#include |part.txt|\n")
        os.symlink("part.txt", self.folder / "part-link")
        os.link(self.folder / "part.txt", self.folder / "part-hard")
        for name in ("part.txt", "./part.txt", "part-link", "part-hard"):
            for arguments in (["piece.txt", name], ["-l", name, "piece.txt", "a.sco"],
                              ["-x", name, "piece.txt", "a.sco"]):
                self.write("a.sco", b"old score")
                result = self.run_korvo(*arguments)
                self.assertEqual(result.returncode, 1, arguments)
                self.assertTrue(result.stderr.endswith(b'\nBad include file name: "part.txt"\n\n'), result.stderr)
                self.assertEqual(self.read("part.txt"), b"te(90)\n", arguments)
                self.assertEqual(self.read("a.sco"), b"old score")

    def test_input_through_a_link(self):
        self.expect_kept("piece.txt", self.run_korvo("link", "piece.txt"))
        self.expect_kept("hard", self.run_korvo("link", "hard"))

    def test_input_from_standard_input(self):
        with open(self.folder / "piece.txt", "rb") as piece:
            self.expect_kept("piece.txt", self.run_korvo("/dev/stdin", "piece.txt", stdin=piece))

    def test_same_name(self):
        for arguments in (("piece.txt", "piece.txt"), ("-l", "piece.txt", "piece.txt", "a.sco"),
                          ("-x", "piece.txt", "piece.txt", "a.sco")):
            result = self.run_korvo(*arguments)
            self.assertEqual((result.returncode, result.stderr),
                             (1, b"\nERROR: You can't use a filename multiple times!\n\n"))
            self.assertEqual(self.read("piece.txt"), PIECE)


class OlderText(support.FaultTest):
    """What stood in a file that is written stays until the first new byte goes into it, or the run has ended well."""

    def setUp(self):
        super().setUp()
        self.write("old", b"older text, longer than what replaces it: " + b"x" * 1000)
        self.old = self.read("old")

    def expect(self, status, content, *arguments):
        self.write("old", self.old)
        self.assertEqual(self.run_korvo(*arguments).returncode, status)
        self.assertEqual(self.read("old"), content)

    def test_names_swapped(self):
        """The score is named as the piece and the piece as the output."""
        self.write("piece.sco", SCORE)
        for options in ([], ["-s"], ["-m"], ["-x", "a.exp"]):
            self.assertEqual(self.run_korvo(*options, "piece.sco", "piece.txt").returncode, 1)
            self.assertEqual(self.read("piece.txt"), PIECE)

    def test_kept_by_a_run_that_writes_nothing(self):
        for piece in (b"}\n", b"i1 = 3 0 4 {\n p2 1\n}\n", b"#include |gone|\n", b"te(0)\n", PIECE[:-2]):
            self.write("bad.txt", piece)
            self.expect(1, self.old, "bad.txt", "old")
            self.expect(1, self.old, "-m", "bad.txt", "old")
        self.write("bad.txt", b"$gone\n")
        self.expect(1, self.old, "-x", "old", "bad.txt", "a.sco")

    def test_a_new_file_is_made_and_stays_empty(self):
        self.write("bad.txt", b"$gone\n")
        self.assertEqual(self.run_korvo("-x", "a.exp", "bad.txt", "a.sco").returncode, 1)
        self.assertEqual((self.read("a.sco"), self.read("a.exp")), (b"", b""))

    def test_replaced_by_what_was_written_before_the_error(self):
        self.write("bad.txt", b"> kept\n}\n")
        self.expect(1, b"\n kept ", "bad.txt", "old")
        self.expect(1, b"> kept \n} \n", "-x", "old", "bad.txt", "a.sco")

    def test_replaced_by_a_run_that_ends_well(self):
        self.write("empty.txt", b"")
        self.expect(0, SCORE, "piece.txt", "old")
        self.expect(0, b"\ne\n", "empty.txt", "old")
        self.expect(0, b"", "-m", "empty.txt", "old")
        self.expect(0, b"", "-x", "old", "empty.txt", "a.sco")

    def test_a_log_always_has_its_banner(self):
        self.write("bad.txt", b"#include |gone|\n")
        self.write("old", self.old)
        result = self.run_korvo("-l", "old", "bad.txt", "a.sco")
        self.assertEqual((result.returncode, self.read("old")), (1, result.stderr))


class WrittenTwice(support.FaultTest):
    """Two names of one file cannot both be written."""

    def test_written_twice(self):
        self.write("a.sco", b"old")
        os.symlink("a.sco", self.folder / "link")
        os.link(self.folder / "a.sco", self.folder / "hard")
        for name in ("./a.sco", "link", "hard"):
            for option in "-l", "-x":
                result = self.run_korvo(option, name, "piece.txt", "a.sco")
                self.assertEqual((result.returncode, result.stderr), (1, cannot_open(name)))
                self.assertEqual(self.read("a.sco"), b"old")
        result = self.run_korvo("-l", "./b", "-x", "b", "piece.txt", "a.sco")
        self.assertEqual((result.returncode, result.stderr), (1, cannot_open("./b")))

    def test_devices_may_be_shared(self):
        result = self.run_korvo("-l", "/dev/null", "-x", "/dev/./null", "piece.txt", "/dev/../dev/null")
        self.assertEqual(result.returncode, 0)


class StandardStreams(support.FaultTest):
    """A shell may start the program with some of its three streams closed. A file that is opened then must not take
    their place: messages would go into it."""

    def test_closed_streams(self):
        for closed in ((0,), (1,), (2,), (0, 1), (0, 2), (1, 2), (0, 1, 2)):
            with self.subTest(closed=closed):
                def close_them(streams=closed):
                    for stream in streams:
                        os.close(stream)

                self.run_korvo("-x", "a.exp", "piece.txt", "a.sco", preexec_fn=close_them)
                self.assertEqual(self.read("piece.txt"), PIECE)
                self.assertEqual(self.read("a.sco"), SCORE)
                self.assertEqual(self.read("a.exp").replace(b" \n", b"\n"), PIECE)

    def test_closed_streams_and_a_usage_error(self):
        def close_them():
            os.close(1)
            os.close(2)

        self.assertEqual(self.run_korvo("-l", preexec_fn=close_them).returncode, 1)

    def test_score_on_standard_output(self):
        result = self.run_korvo("-s", "piece.txt", "/dev/stdout")
        self.assertEqual((result.returncode, result.stdout), (0, SCORE))

    def test_piece_on_standard_input(self):
        result = self.run_korvo("/dev/stdin", "a.sco", stdin=None, input=PIECE)
        self.assertEqual((result.returncode, self.read("a.sco")), (0, SCORE))


class TemporaryFile(support.FaultTest):
    """It is nameless and private: nobody else can open it."""

    def test_private(self):
        os.mkfifo(self.folder / "slow.txt")
        process = subprocess.Popen([support.KORVO, "slow.txt", "a.sco"], cwd=self.folder,
                                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        try:
            with open(self.folder / "slow.txt", "wb") as piece:
                piece.write(PIECE)
                piece.flush()
                descriptor = self.wait_for_temporary_file(process)
                status = os.stat(descriptor)
                self.assertEqual(status.st_nlink, 0)
                self.assertEqual(stat.S_IMODE(status.st_mode) & 0o077, 0)
        finally:
            process.wait(HANG)
        self.assertEqual(process.returncode, 0)
        self.assertEqual(self.read("a.sco"), SCORE)

    def wait_for_temporary_file(self, process):
        descriptors = f"/proc/{process.pid}/fd"
        own = str(self.folder)
        late = time.monotonic() + HANG
        while time.monotonic() < late:
            for descriptor in os.listdir(descriptors):
                path = f"{descriptors}/{descriptor}"
                try:
                    name = os.readlink(path)
                except FileNotFoundError:  # closed since it was listed
                    continue
                if name.endswith("(deleted)") and not name.startswith(own):
                    return path
            time.sleep(0.01)
        self.fail("no temporary file")


class Names(support.FaultTest):
    """Names are used as they are written, and text is never taken for a format."""

    def test_include_names_are_not_expanded(self):
        self.write("part.txt", b"; nothing\n")
        for name in ("~/part.txt", "$PWD/part.txt", "par*.txt", "part.tx?", "`echo part.txt`", " part.txt", "part.txt ",
                     "part.txt\0x", "%s%n", "part.txt|", "file:part.txt", "<part.txt"):
            self.write("piece.txt", b"#include |" + name.encode() + b"|\n" + PIECE)
            result = self.run_korvo("piece.txt", "a.sco")
            shown = name.split("\0")[0].split("|")[0]
            if shown == "part.txt" and "\0" not in name:
                continue
            self.assertEqual(result.returncode, 1, name)
            self.assertIn(f'\nBad include file name: "{shown}"\n\n'.encode(), result.stderr)

    def test_formats(self):
        """Everything that is printed of a piece, with conversions in it."""
        evil = b"%s%s%n%n%d%f%c%%%p%1000000d"
        texts = {
            b"#include |" + evil + b"|\n": b'"' + evil + b'"',
            b"> " + evil + b"\n%\n": None,
            evil + b"\n": evil,
            b"i1 = 3 0 4 {" + evil + b"\n": evil,
            b"i1 = 3 0 4 { p2 1 p3 1 " + evil + b"\n": evil,
            b"#define " + evil + b" #1#\n": evil,
            b"#undef " + evil + b"\n": evil,
            b"#const a " + evil + b"\n": evil,
            b"$" + evil + b"\n": evil,
            b"~[" + evil + b"]\n": evil,
        }
        for text, shown in texts.items():
            self.write("piece.txt", text)
            result = self.run_korvo("-t", "-l", "a.log", "-x", "a.exp", "piece.txt", "a.sco")
            self.assertEqual(result.returncode, 1, text)
            if shown is not None:
                self.assertIn(shown, result.stderr)
                self.assertIn(shown, self.read("a.log"))
        self.write("piece.txt", b">" + evil + b"\n" + PIECE)
        self.assertEqual(self.run_korvo("piece.txt", evil.decode()).returncode, 0)
        self.assertEqual(self.read(evil.decode()), b"\n" + evil + b" " + SCORE)


if __name__ == "__main__":
    support.main()
