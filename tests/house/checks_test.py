# Gives each house check samples that it must refuse, with the place it must name, and samples that it must let pass.
# SPDX-License-Identifier: MIT
import sys
import tempfile
import unittest
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "tools"))
sys.dont_write_bytecode = True

import check_floors  # noqa: E402
import check_headers  # noqa: E402
import check_sizes  # noqa: E402
import check_style  # noqa: E402

HEAD = "// A sample.\n// SPDX-License-Identifier: MIT\n"
HEADER = HEAD + "#pragma once\n"
LONG = "    Step();\n" * 90
CONSTRUCTOR = "A::A()\n    : B {1}\n    , C(2)\n    , D<int> {3}\n{\n"

# check, file, content, what the only finding says behind the file's name ("" when there must be none)
CASES = [
    (check_floors, "runtime/a.h", HEADER + "#include <hearth/markup/node.h>\n", ":4: runtime includes"),
    (check_floors, "runtime/a.cpp", HEAD + '#include "../foundation/x.h"\n', ":3: runtime includes"),
    (check_floors, "xml/a.cpp", HEAD + "#include <hearth/styling/x.h>\n", ":3: xml includes"),
    (check_floors, "script/bridge/a.cpp", HEAD + "#include <hearth/script/library/x.h>\n", ":3: script includes"),
    (check_floors, "markup/a.cpp", HEAD + "#include <hearth/hearth.h>\n", ":3: markup includes"),
    (check_floors, "attic/a.cpp", HEAD, ":1: the folder attic"),
    (check_floors, "gif/a.cpp", HEAD + "#include <hearth/export.h>\n#include <hearth/runtime/text.h>\n", ""),
    (check_floors, "script/library/a.cpp", HEAD + "#include <hearth/gif/x.h>\n#include <vector>\n", ""),
    (check_headers, "runtime/a.h", HEADER + "inline std::size_t Size() { return 0; }\n", ":1: does not compile alone"),
    (check_headers, "runtime/a.h", HEADER + "#include <cstddef>\ninline std::size_t Size() { return 0; }\n", ""),
    (check_headers, "runtime/a_p.h", HEADER + "inline std::size_t Size() { return 0; }\n", ""),
    (check_sizes, "runtime/a.cpp", HEAD + "\n" * 649, ":651: file of 651 lines"),
    (check_sizes, "runtime/a.cpp", HEAD + "namespace ht {\nvoid F()\n{\n" + LONG + "}\n}\n", ":4: function of 93 lines"),
    (check_sizes, "runtime/a.cpp", HEAD + "struct S {\n  int G(char c = '{') const noexcept {\n" + LONG + "}\n};\n",
     ":4: function of 92 lines"),
    (check_sizes, "runtime/a.cpp", HEAD + CONSTRUCTOR + LONG + "}\n", ":3: function of 96 lines"),
    (check_sizes, "runtime/a.cpp", HEAD + "bool operator==(A a, A b)\n{\n" + LONG + "}\n", ":3: function of 93 lines"),
    (check_sizes, "runtime/a.cpp", HEAD + "// A flat table: one case a kind.\nvoid F()\n{\n" + LONG + "}\n", ""),
    (check_sizes, "runtime/a.cpp", HEAD + "constexpr A kRows[] = {\n" + "    {F(1), 2},\n" * 90 + "};\n", ""),
    (check_sizes, "runtime/a.cpp", HEAD + ("void F()\n{\n" + "    Step(R\"({{)\");\n" * 60 + "}\n") * 2, ""),
    (check_style, "runtime/a.cpp", "#include <vector>\n" + LONG, ":1: the first line"),
    (check_style, "runtime/a.cpp", "// A sample.\n\nint x;\n", ":1: the head comment lacks"),
    (check_style, "runtime/a.h", HEAD + "int x;\n", ":1: a header without"),
    (check_style, "runtime/a.h", HEADER + "using namespace std;\n", ":4: a header opens"),
    (check_style, "runtime/a.cpp", HEAD + "using namespace std;\n", ""),
    (check_style, "runtime/a.cpp", HEAD + "\n#define MAX(a, b) 0\n", ":4: the macro MAX"),
    (check_style, "runtime/a.cpp", HEAD + "#define HEARTH_SIMD 1\n", ""),
    (check_style, "runtime/a.cpp", HEAD + "/* one\n   to" + "do: two */\n", ":4: the word"),
    (check_style, "runtime/a.cpp", HEAD + 'auto s = "// XX' + 'X";\nint big = 1\'000\'000; // plain\n', ""),
]


class Checks(unittest.TestCase):
    def run_check(self, check, name, content):
        with tempfile.TemporaryDirectory() as folder:
            file = Path(folder) / "src" / "hearth" / name
            file.parent.mkdir(parents=True)
            file.write_text(content, encoding="utf-8")
            return [finding.removeprefix(str(file)) for finding in check.check(folder)]

    def test_samples(self):
        for check, name, content, expected in CASES:
            with self.subTest(check=check.__name__, name=name, expected=expected):
                findings = self.run_check(check, name, content)
                if expected:
                    self.assertEqual(len(findings), 1, findings)
                    self.assertTrue(findings[0].startswith(expected), findings)
                else:
                    self.assertEqual(findings, [])

    def test_the_whole_library_is_one_include(self):
        with tempfile.TemporaryDirectory() as folder:
            headers = Path(folder) / "src" / "hearth"
            (headers / "runtime").mkdir(parents=True)
            (headers / "hearth.h").write_text(HEADER + "#include <hearth/runtime/a.h>\n", encoding="utf-8")
            (headers / "runtime" / "a.h").write_text(HEADER + "#include <hearth/runtime/b.h>\n", encoding="utf-8")
            for name in ("b.h", "b_p.h", "lost.h"):
                (headers / "runtime" / name).write_text(HEADER, encoding="utf-8")
            self.assertEqual(check_headers.check(folder),
                             [f"{headers}/runtime/lost.h:1: hearth.h does not lead to this header"])


if __name__ == "__main__":
    unittest.main()
