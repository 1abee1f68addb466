"""What is made of the header: up to date, and right about what a header may come to hold."""
import importlib.machinery
import importlib.util
import pathlib
import subprocess
import unittest

SCRIPT = pathlib.Path(__file__).resolve().parents[2] / "scripts/python-signatures"
loader = importlib.machinery.SourceFileLoader("signatures", str(SCRIPT))
signatures = importlib.util.module_from_spec(importlib.util.spec_from_loader("signatures", loader))
loader.exec_module(signatures)


class Signatures(unittest.TestCase):
    def test_the_committed_file_is_what_the_header_asks_for(self):
        run = subprocess.run([SCRIPT, "--check"], capture_output=True, text=True)
        self.assertEqual((run.returncode, run.stderr), (0, ""))

    def test_what_a_header_may_hold(self):
        for header, wanted in (
            ("typedef int32_t quellaro_halvo_level;\nenum { quellaro_halvo_level_low = -1, quellaro_halvo_level_next };\n"
             "typedef int64_t quellaro_halvo_level_set;\nenum { quellaro_halvo_level_set_all = 0x10 };",
             ["class Level(IntEnum):\n    LOW = -1\n    NEXT = 0\n", "class LevelSet(IntEnum):\n    ALL = 16\n"]),
            ("typedef enum quellaro_halvo_mode { quellaro_halvo_mode_on = 1 } quellaro_halvo_mode;", ["class Mode(IntEnum):\n    ON = 1\n"]),
            ("typedef struct quellaro_halvo_thing quellaro_halvo_thing;\n"
             "QUELLARO_HALVO_PUBLIC const char* const* quellaro_halvo_thing_names(\n"
             "    const quellaro_halvo_thing* thing, uint32_t* count);  // a comment; with (brackets)",
             ['"thing_names": (POINTER(c_char_p), c_void_p, POINTER(c_uint32)),']),
            ("typedef void (*quellaro_halvo_log_sink)(int32_t level, const char* text, void* context);\n"
             "int quellaro_halvo_set_log_sink(quellaro_halvo_log_sink sink, void* context);",
             ["LogSink = CFUNCTYPE(None, c_int32, c_char_p, c_void_p)", '"set_log_sink": (c_int, LogSink, c_void_p),']),
            ("#define QUELLARO_HALVO_NAME \"x\"\n#define QUELLARO_HALVO_NUMBER(a) \\\n  ((a) + 1)\nvoid quellaro_halvo_a(void);",
             ['NAME = "x"', '"a": (None,),']),
        ):
            with self.subTest(header):
                text = signatures.written(signatures.Interface(header))
                compile(text, "made", "exec")
                for line in wanted:
                    self.assertIn(line, text)

    def test_what_is_not_understood_is_an_error(self):
        for header in "long double quellaro_halvo_a(void);", "int quellaro_halvo_a(FILE* file);", "enum { stray = 1 };", "int a[3];":
            with self.subTest(header), self.assertRaises(signatures.Unreadable):
                signatures.written(signatures.Interface(header))


if __name__ == "__main__":
    unittest.main()
