# Runs the built command on rows of arguments and input, and the examples of its help and of the guide.
# Called with the path of the command and the folder of the project.
# SPDX-License-Identifier: MIT
import os
import pty
import re
import stat
import subprocess
import sys
import tempfile
import threading
import unittest
import zipfile
from http.server import BaseHTTPRequestHandler, ThreadingHTTPServer
from pathlib import Path

os.environ["no_proxy"] = "*"  # the servers are on this machine
HEARTH = Path(sys.argv[1]).resolve()
PROJECT = Path(sys.argv[2]).resolve()

RUSSIAN = "Привет"
PAGE = f"<p>{RUSSIAN}"
TREE = f'<body>\n  <p>\n    "{RUSSIAN}"\n'
META = '<meta charset="{}">'
TEXT = ("html", "--as", "content")
FRAGMENT = ("html", "--fragment")


def page_with_cut_declaration():
    """A page whose charset declaration begins in front of byte 4,096 and ends behind it."""
    return b'<i title="' + b"-" * 4068 + b'">' + META.format("windows-1251").encode() + PAGE.encode("cp1251")


# What the row shows, arguments, standard input, expected output. All end with status 0 and no message.
PRINTED = [
    ("the forms", ("html",), b"<ul><li>one<li>two", "<body><ul><li>one</li><li>two</li></ul></body>\n"),
    ("the forms", ("html", "--as", "inner"), b"<b>a<p>b", "<b>a<p>b</p></b>\n"),
    ("the forms", ("html", "--as=formatted", "--indent", "4"), b"<div><p>a<p>b</div>",
     "\r\n    <div>\r\n        <p>a</p>\r\n        <p>b</p>\r\n    </div>\n"),
    ("the forms", ("html", "--as", "text"), b"<p>a &amp; b<p>c", "a & b\r\nc\n"),
    ("the forms", ("html", "--as", "fast-text"), b"<b>a</b>&lt;<script>x</script>c", "a<c\n"),
    ("the forms", TEXT, b"<b>a</b> <i>b</i>", "a b\n"),
    ("a fragment has no document around it", (*FRAGMENT, "--as", "tree"), b"<td>a</td>b",
     '<body>\n  <td>\n    "a"\n  "b"\n'),
    ("a fragment's encoding is not guessed either", (*FRAGMENT, "--encoding", "utf-8"),
     "<meta charset=windows-1251>é 日本".encode(), '<body><meta charset="windows-1251"/>é 日本</body>\n'),
    ("no second line end", TEXT, b"<pre>a\n</pre>\n", "a\n\n"),
    ("a tree quotes what JSON quotes", (*FRAGMENT, "--as", "tree"), b'<a t=\'"\\\n\t\x01\'><!--c--><?d?>',
     '<body>\n  <a t="\\"\\\\\\n\\t\\u0001">\n    #comment "c"\n    #directive "d"\n'),
    ("- is standard input, -- ends the options", ("html", "--as", "content", "--", "-"), b"a", "a\n"),
    ("a name behind -- may begin with -", (*TEXT, "--", "-x.html"), b"", "dash\n"),
    ("a command's name may be a file's", (*TEXT, "man"), b"", "manual\n"),
    ("a file wins over a pipe", (*TEXT, "man"), b"pipe", "manual\n"),
    ("XML", ("xml",), "<?xml version='1.0'?><a> <b c='\u00e9'>x &amp; y</b><d/></a>".encode(),
     "<?xml version='1.0'?>\r\n<a><b c=\"\u00e9\">x &amp; y</b><d/></a>\n"),
    ("XML", ("xml", "--as=formatted"), b"<a><b>x</b><c/></a>", "<a>\r\n  <b>x</b>\r\n  <c/>\r\n</a>\n"),
    ("XML", ("xml", "--as=json"), b"<a b='c'><d/></a>", '{\r\n"b":"c","d":{\r\n}}\n'),
    ("XML", ("xml", "--as=tree"), b"<a B='c'>x<!--y--></a>", '<a B="c"> = "x"\n  #comment "y"\n'),
    ("XML", ("xml", "--encoding", "koi8-r"), f"<a>{RUSSIAN}</a>".encode("koi8-r"), f"<a>{RUSSIAN}</a>\n"),
    ("JSON", ("json",), b'{"a":[1,{"b":true}]}', '{\r\n"a":[\r\n{\r\n},\r\n{\r\n"b":"true"}]\r\n}\n'),
    ("JSON", ("json", "--as=xml"), b'{"a":[1,{"b":"<"}]}',
     '<object><a><value>1</value><object b="&lt;"/></a></object>\n'),
    ("JSON", ("json", "--as=tree"), b'{"a":"\\n"}', '<object a="\\n">\n'),
    ("JSON", ("json", "--as=tokens"), b"{'a' :-1.5}\n",
     'jtObjectStart "{"\njtString "a"\njtSpace " "\njtColon ":"\njtFloat "-1.5"\njtObjectEnd "}"\n'),
    ("JSON", ("json", "--as=tokens"), b"", "\n"),
    ("paths", ("xpath", "//li"), b"<ul><li id=a>one<li>two<b>x</b></ul>", '<li id="a">one</li>\n<li>two<b>x</b></li>\n'),
    ("paths", ("xpath", "//li", "--as=text", "--first"), b"<ul><li>one<li>two", "one\n"),
    ("paths", ("xpath", "//b", "--as=path"), b"<ul><li><b>x", "b/li/ul/body\n"),
    ("paths", ("xpath", "b", "--xml", "--as=tree"), b"<a><b c='1'>x<d/></b><B/></a>", '<b c="1"> = "x"\n  <d>\n'),
    ("paths", ("xpath", "--xml", "b/d"), b"<a><b><d>x</d></b></a>", "<d>x</d>\n"),
    ("paths", ("xpath", "--value", "//a/@href"), b"<a name=x>y</a><a href='/z'>", "/z\n"),
    ("paths", ("xpath", "u"), b"<b>", ""),
    ("paths", ("xpath", "//b", "--as=text"), b"<b>1</b><b></b><b>2", "1\n\n2\n"),
    ("XML", ("xml", "--well-formed", "--as=tree"), b"<a b='c'/>", '<a b="c">\n'),
    ("JSON", ("json", "--lossless"), b'{"b" : 1, "a":[true,"\\n"], "b":null}', '{"b":1,"a":[true,"\\n"],"b":null}\n'),
    ("JSON", ("json", "--lossless", "--as=xml"), b'{"b":1,"a":[2]}',
        "<object><b>1</b><a><value>2</value></a></object>\n"),
    ("without its last line end", ("encode",), b'a<"\r\n', 'a&lt;"\n'),
    ("only the last line end goes", ("encode", "--attr"), b'"\n\n', "&quot;\n"),
    ("addresses", ("encode", "--url"), "a b/é\n".encode(), "a+b%2f%c3%a9\n"),
    ("addresses", ("decode", "--url"), b"a+b%2f%c3%a9%%%4\r\n", "a b/é%\n"),
    ("colours", ("color", "red"), b"", "0xFFFF0000\n"),
    ("colours", ("color", "#12345678", "--as", "css"), b"", "#34567812\n"),
    ("colours", ("color", "abc", "--as", "hex"), b"", "aabbcc\n"),
    ("colours", ("color", "#ff8000", "--as", "hsb"), b"", "30.117647 100 100\n"),
    ("colours", ("color", "--as=hsb", "gray"), b"", "-60 0 50.19608\n"),
    ("colours", ("color", "transparent"), b"", "0x00FFFFFF\n"),
    ("colours", ("color", "none", "--as", "css"), b"", "none\n"),
    ("colours", ("color", "indigo", "--as", "hex"), b"", "no colour\n"),
    ("colours", ("color", "--", "-1"), b"", "no colour\n"),
    ("colours", ("color", ""), b"", "0xFF000000\n"),
    ("escapes of XML and JSON", ("encode", "--xml"), "\u00a0\u2665\"\n".encode(), "&#160;\u2665&quot;\n"),
    ("escapes of XML and JSON", ("encode", "--json"), b'a\nb\r\t"\n', 'a\\rb\\n\\t\\"\n'),
    ("the mark is no text", ("encode",), "\ufeffé<".encode("utf-16-be"), "é&lt;\n"),
    ("a lone surrogate", ("html", *TEXT[1:], "--encoding", "utf-16le"), b"a\x00\x00\xd8b\x00", "a\ufffdb\n"),
    ("marks", TEXT, PAGE.encode("utf-8-sig"), RUSSIAN + "\n"),
    ("marks", TEXT, b"\xff\xfe" + PAGE.encode("utf-16-le"), RUSSIAN + "\n"),
    ("marks", TEXT, b"\xfe\xff" + PAGE.encode("utf-16-be"), RUSSIAN + "\n"),
    ("a mark wins over a declaration", TEXT, (META.format("koi8-r") + PAGE).encode("utf-8-sig"), RUSSIAN + "\n"),
    ("UTF-16 without a mark", ("html", "--as", "tree"), ("<b></b>" + PAGE).encode("utf-16-le"),
     TREE.replace("<p>", "<b>\n  <p>")),
    ("UTF-16 without a mark", ("html", "--as", "tree"), ("<b></b>" + PAGE).encode("utf-16-be"),
     TREE.replace("<p>", "<b>\n  <p>")),
    ("UTF-8 without a word", TEXT, PAGE.encode(), RUSSIAN + "\n"),
    ("a declared page", TEXT, (META.format("windows-1251") + PAGE).encode("cp1251"), RUSSIAN + "\n"),
    ("a declaration cut off", TEXT, page_with_cut_declaration(), RUSSIAN + "\n"),
    ("an unknown page is read as bytes", TEXT, (META.format("klingon") + "é").encode("latin-1"), "é\n"),
    ("a named encoding wins", (*TEXT, "--encoding", "KOI8-R"), (META.format("utf-8") + PAGE).encode("koi8-r"),
     RUSSIAN + "\n"),
    ("a named encoding takes its mark", (*TEXT, "--encoding", "utf-16"), b"\xfe\xff" + PAGE.encode("utf-16-be"),
     RUSSIAN + "\n"),
    ("little input", ("html",), b"", "<body></body>\n"),
    ("little input", TEXT, b"\xff", "\u00ff\n"),
    ("little input", TEXT, b"\xff\xfea", "\n"),
    ("detection", ("encoding",), b"", "default\n"),
    ("detection", ("encoding",), PAGE.encode(), "utf-8\n"),
    ("detection", ("encoding",), b"\xff\xfe", "utf-16\n"),
    ("detection", ("encoding", "page-1251.html"), b"", "default 1251\n"),
]

# Arguments, standard input, status, message (a part of it).
REFUSED = [
    (("html", "missing.html"), b"", 3, "hearth: missing.html: No such file or directory"),
    (("html", "folder"), b"", 3, "hearth: folder: Is a directory"),
    (("html", "a\x1b[2J\nb\x9bm\x7f é"), b"", 3, "hearth: a\\x1B[2J\\x0Ab\\x9Bm\\x7F é: No such file"),
    (("html", ""), b"", 3, "No such file"),
    (("html", "-o", "folder"), b"", 3, "hearth: folder: Is a directory"),
    (("html", "-o", "missing/page.html"), b"", 3, "hearth: missing/page.html: No such file or directory"),
    (("html", "-o", "/dev/full"), b"", 3, "hearth: /dev/full: No space left on device"),
    (("encoding",), page_with_cut_declaration(), 1, "hearth: the charset declaration is cut off"),
    (("encoding",), b"<p>charset=abc", 1, "hearth: the charset declaration is cut off"),
    (("html", "--encoding", "klingon"), b"", 2, "there is no encoding klingon"),
    (("html", "--as", "xml"), b"", 2, "xml not in {outer,inner,"),
    (("html", "--indent", "-1"), b"", 2, "--indent"),
    (("html", "--indent", "99999999999"), b"", 2, "--indent"),
    (("xml",), b"<a><b></a>", 1, "hearth: EHtXML: Tag order error: /b expected, /a found at position 0"),
    (("xml",), b"<a b=c>", 1, "hearth: EHtmlParserException: Attribute b value expected but c found."),
    (("xml", "--well-formed"), b"<a>\n<b></a>", 1,
        "hearth: EHtXML: XML is not well-formed at line 2, column 7: end tag without its start tag"),
    (("json",), b"", 1, "hearth: EHtJSONParserException: JSON is empty"),
    (("json", "--as=tokens"), b"[01]", 1, "hearth: EConvertError: Incorrect number"),
    (("encode", "--xml", "--json"), b"", 2, "--xml excludes --json"),
    (("html", "one", "two"), b"", 2, "two\nTry: hearth html --help"),
    (("color", "rgba(256,0,0,1)"), b"", 1, "hearth: ERangeError: Range check error"),
    (("color",), b"", 2, "TEXT"),
    (("color", "red", "--as", "rgb"), b"", 2, "rgb not in {hex,css,hsb}"),
    (("decode",), b"", 2, "--url"),
    (("encode", "--attr", "--url"), b"", 2, "--attr excludes --url"),
    (("completions",), b"", 2, "SHELL"),
    (("completions", "csh"), b"", 2, "csh not in {bash,zsh,fish}"),
    (("zip", "list", "missing.zip"), b"", 3, "hearth: missing.zip: No such file or directory"),
    (("zip", "list", "man"), b"", 1, "hearth: EHtZIP: The file is no ZIP archive"),
    (("zip", "get", "man"), b"", 1, "hearth: EHtZIP: The file is no ZIP archive"),
    (("zip", "make", "new.zip", "missing"), b"", 3, "hearth: missing: No such file or directory"),
    (("zip", "make", "new.zip", "/dev/null"), b"", 3, "hearth: /dev/null: neither a file nor a folder"),
    (("zip", "make", "new.zip", "man", "./man"), b"", 1, "hearth: ./man: a file before has the name man"),
    (("zip", "make", "missing/new.zip", "man"), b"", 3, "hearth: missing/new.zip: No such file or directory"),
    (("zip", "make", "new.zip"), b"", 2, "FILE"),
    (("zip", "burn"), b"", 2, "there is no command or option burn\nTry: hearth zip --help"),
    (("zip",), b"", 2, "Usage: hearth zip [OPTIONS] COMMAND"),
    (("burn",), b"", 2, "there is no command or option burn"),
    (("--burn",), b"", 2, "there is no command or option --burn"),
    ((), b"", 2, "Usage: hearth"),
]


def run(arguments, given=b"", **options):
    return subprocess.run([HEARTH, *arguments], input=given, capture_output=True, check=False, timeout=60, **options)


HAS_NET = b"\n  fetch " in run(("--help",)).stdout


def commands(above=()):
    """The commands of the help, each in front of those below it."""
    listed = run((*above, "--help")).stdout.decode().partition("\nCommands:\n")[2].partition("\n\n")[0]
    for name in re.findall(r"^  (\w+) ", listed, re.MULTILINE):
        yield (*above, name)
        yield from commands((*above, name))


def shell(line, **options):
    path = f"{HEARTH.parent}:{os.environ['PATH']}"
    return subprocess.run(["bash", "-c", line], capture_output=True, text=True, check=False, timeout=60,
                          stdin=subprocess.DEVNULL, env={**os.environ, "PATH": path}, **options)


def examples(text):
    """Shell lines, marked by "$ ", each with the lines printed under it, from indented or fenced text."""
    for block in re.findall(r"^(?:```\w*\n(.*?)^```|((?:(?:  .*)?\n)+))", text, re.MULTILINE | re.DOTALL):
        lines = "\n".join(line.removeprefix("  ") if block[1] else line for line in "".join(block).splitlines())
        for command, printed in re.findall(r"^\$ (.*)\n((?:(?!\$ ).*\n)*)", lines.strip("\n") + "\n", re.MULTILINE):
            yield command, printed


class Pages(BaseHTTPRequestHandler):
    """Answers on the loopback; every answer says which request it is for."""
    PAGES = {
        "/greeting": ("text/plain", b"Hello from far away\n"),
        "/koi8": ("text/html; charset=KOI8-R", (META.format("windows-1251") + PAGE).encode("koi8-r")),
        "/marked": ("text/html; charset=koi8-r", PAGE.encode("utf-8-sig")),
        "/unsaid": ("text/html", (META.format("windows-1251") + PAGE).encode("cp1251")),
        "/bytes": ("image/gif", bytes(range(256))),
        "/secret": ("text/plain", b"\x1b[2J\x1b]0;mine\x07"),
    }

    def answer(self):
        body = self.rfile.read(int(self.headers.get("Content-Length", "0")))
        kind, page = self.PAGES.get(self.path, ("text/plain; charset=utf-8", b""))
        if self.path == "/echo":
            told = (self.command, self.headers.get("Content-Type", "-"), self.headers.get("Authorization", "-"))
            page = " ".join(told).encode() + b" " + body
        self.send_response(401 if self.path == "/secret" else 200 if page else 404)
        self.send_header("Content-Type", kind)
        self.send_header("Content-Length", str(len(page)))
        self.end_headers()
        self.wfile.write(page)

    do_GET = do_POST = do_DELETE = answer

    def log_message(self, *_):
        pass


def serve(case):
    server = ThreadingHTTPServer(("127.0.0.1", 0), Pages)
    threading.Thread(target=server.serve_forever, daemon=True).start()
    case.addCleanup(server.server_close)
    case.addCleanup(server.shutdown)
    return f"http://127.0.0.1:{server.server_port}"


class InFolder(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)
        (self.folder / "folder").mkdir()
        (self.folder / "-x.html").write_text("dash", encoding="utf-8")
        (self.folder / "man").write_text("manual", encoding="utf-8")
        (self.folder / "page-1251.html").write_bytes((META.format("windows-1251") + PAGE).encode("cp1251"))


class Rows(InFolder):
    def test_what_is_printed(self):
        for name, arguments, given, expected in PRINTED:
            with self.subTest(name, arguments=arguments, given=given[:80]):
                done = run(arguments, given, cwd=self.folder)
                self.assertEqual((done.stdout.decode(), done.stderr.decode(), done.returncode), (expected, "", 0))

    def test_what_is_refused(self):
        for arguments, given, status, message in REFUSED:
            with self.subTest(arguments=arguments):
                done = run(arguments, given, cwd=self.folder)
                self.assertEqual((done.stdout, done.returncode), (b"", status), done.stderr)
                self.assertIn(message, done.stderr.decode())


class Files(InFolder):
    def names(self):
        return sorted(path.name for path in self.folder.iterdir())

    def test_a_replaced_file_keeps_its_mode_and_a_link_stays(self):
        page = self.folder / "page.html"
        page.write_text("<p>old", encoding="utf-8")
        page.chmod(0o640)
        link = self.folder / "link.html"
        link.symlink_to("page.html")
        before = self.names()
        self.assertEqual(run(("html", page, "-o", link)).returncode, 0)
        self.assertEqual(page.read_text(encoding="utf-8"), "<body><p>old</p></body>\n")
        self.assertTrue(link.is_symlink())
        self.assertEqual(stat.S_IMODE(page.stat().st_mode), 0o640)
        self.assertEqual(self.names(), before)

    def test_a_failure_leaves_the_old_file(self):
        page = self.folder / "page.html"
        page.write_text("old", encoding="utf-8")
        before = self.names()
        limit = f"ulimit -f 1; head -c 9999 /dev/zero | tr '\\0' x | hearth html -o '{page}'"
        for line in (f"hearth html missing -o '{page}'", limit):
            with self.subTest(line):
                done = shell(line, cwd=self.folder)
                self.assertEqual((done.returncode, page.read_text(encoding="utf-8")), (3, "old"), done.stderr)
                self.assertEqual(self.names(), before)

    def test_a_device_is_written_not_replaced(self):
        self.assertEqual(shell("hearth html -o /dev/stdout | cat").stdout, "<body></body>\n")


class Archives(InFolder):
    def make(self, *entries, name="a.zip"):
        with zipfile.ZipFile(self.folder / name, "w") as archive:
            for entry, contents in entries:
                info = zipfile.ZipInfo(entry, (2024, 2, 29, 12, 30, 58))
                archive.writestr(info, contents, zipfile.ZIP_DEFLATED)
        return (self.folder / name).read_bytes()

    def run_zip(self, *arguments, given=b""):
        done = run(("zip", *arguments), given, cwd=self.folder)
        return done.stdout, done.stderr.decode(), done.returncode

    def refuse(self, message, status, *arguments):
        printed, said, ended = self.run_zip(*arguments)
        self.assertEqual((printed, ended), (b"", status), said)
        self.assertIn(message, said)

    def files(self, folder):
        return {str(path.relative_to(self.folder / folder)): path.read_bytes()
                for path in (self.folder / folder).rglob("*") if path.is_file()}

    def test_a_list_tells_what_the_directory_does(self):
        whole = self.make(("gr\u00f6\u00dfe/\n", b""), ("b c", b"x" * 5000), ("method", b""), ("locked", b""))
        at = whole.rfind(b"method") - 46
        whole = whole[:at + 10] + b"\x0c\0\xff\xff\xff\xff" + whole[at + 16:]
        at = whole.rfind(b"locked") - 46
        whole = whole[:at + 8] + b"\1" + whole[at + 9:]
        small = re.search(rb"5000 (\d+) ", self.run_zip("list", given=whole)[0])[1].decode()
        expected = ('0 2 deflated 2024-02-29T12:30:58 "gr\u00f6\u00dfe/\\n"\n'
                    f'5000 {small} deflated 2024-02-29T12:30:58 "b c"\n'
                    '0 2 12 - "method"\n'
                    '0 2 deflated+encrypted 2024-02-29T12:30:58 "locked"\n')
        self.assertEqual(self.run_zip("list", given=whole), (expected.encode(), "", 0))
        (self.folder / "a.zip").write_bytes(whole)
        self.refuse("is encrypted", 1, "get", "a.zip", "locked")
        self.refuse("by an unknown method", 1, "get", "a.zip", "method")

    def test_entries_go_where_they_are_told(self):
        whole = self.make(("pages/a", b"one\r\n\0"), ("pages/deep/b", b"two"), ("pages/empty/", b""), ("pagesc", b"three"))
        one = b"one\r\n\0"
        self.assertEqual(self.run_zip("get", "a.zip", "pages/a"), (one, "", 0))
        self.assertEqual(self.run_zip("get", "-", "pages/a", given=whole), (one, "", 0))
        self.assertEqual(self.run_zip("get", "a.zip", "pages/a", "-o", "man"), (b"", "", 0))
        self.assertEqual((self.folder / "man").read_bytes(), one)
        self.assertEqual(self.run_zip("get", "a.zip", "--to", "x/all"), (b"", "", 0))
        self.assertEqual(self.files("x/all"), {"pages/a": one, "pages/deep/b": b"two", "pagesc": b"three"})
        self.assertTrue((self.folder / "x/all/pages/empty").is_dir())
        for names in (("pages",), ("pages/", "pages/a")):
            with self.subTest(names):
                self.assertEqual(self.run_zip("get", "a.zip", *names, "--to", "part"), (b"", "", 0))
                self.assertEqual(sorted(self.files("part")), ["pages/a", "pages/deep/b"])
        for names, message in (((), "name one entry"), (("pages/a", "pagesc"), "name one entry")):
            self.refuse(message, 2, "get", "a.zip", *names)
        self.refuse("--to excludes", 2, "get", "a.zip", "--to", "x", "-o", "y")
        self.refuse("hearth: pages/empty is a folder", 1, "get", "a.zip", "pages/empty")
        self.refuse("hearth: pages is a folder", 1, "get", "a.zip", "pages")
        self.refuse("hearth: there is no entry page", 1, "get", "a.zip", "page")
        self.refuse("hearth: there is no entry b", 1, "get", "a.zip", "pages", "b", "--to", "none")
        self.refuse('hearth: Cannot create folder "man/pages"', 3, "get", "a.zip", "--to", "man")
        self.assertFalse((self.folder / "none").exists())

    def test_nothing_leaves_the_folder(self):
        for name in ("../x", "a/../../x", "/x", "c:x", "a\\..\\x"):
            with self.subTest(name):
                self.make(("first", b"1"), (name, b"2"))
                self.refuse("has an unsafe name", 1, "get", "a.zip", "--to", "out")
                self.assertEqual(self.run_zip("get", "a.zip", name), (b"2", "", 0))
        (self.folder / "linked").mkdir()
        (self.folder / "linked/away").symlink_to(self.folder / "folder")
        self.make(("away/x", b"1"))
        self.refuse('Entry "away/x" leads through a link', 1, "get", "a.zip", "--to", "linked")
        self.assertEqual((self.files("folder"), (self.folder / "out").exists()), ({}, False))

    def test_damage_is_found_before_anything_is_printed(self):
        whole = self.make(("a", os.urandom(200000)))
        (self.folder / "a.zip").write_bytes(whole[:100000] + bytes([whole[100000] ^ 1]) + whole[100001:])
        self.refuse('EHtZIP: Entry "a"', 1, "get", "a.zip", "a")
        self.refuse('EHtZIP: Entry "a"', 1, "get", "a.zip", "a", "-o", "man")
        self.assertEqual((self.folder / "man").read_text(encoding="utf-8"), "manual")
        (self.folder / "a.zip").write_bytes(whole[:100000])
        self.refuse("EHtZIP: The file is no ZIP archive", 1, "get", "a.zip", "a")
        self.make(("bomb", bytes(8 << 20)))
        for target in ((), ("--to", "out")):
            self.refuse("more than the limit of 200 times", 1, "get", "a.zip", "bomb", *target)
        self.assertEqual(self.files("out"), {})
        self.assertEqual(len(self.run_zip("get", "a.zip", "bomb", "--any-ratio")[0]), 8 << 20)

    def test_an_archive_is_made_in_the_same_order_each_time(self):
        for name in ("tree/b/2", "tree/b/1", "tree/a", "tree/B", "tree/c/"):
            path = self.folder / name
            (path if name.endswith("/") else path.parent).mkdir(parents=True, exist_ok=True)
            if not name.endswith("/"):
                path.write_text(name * 99, encoding="utf-8")
        (self.folder / "tree/d").symlink_to("b")
        expected = ["man", "tree/B", "tree/a", "tree/b/1", "tree/b/2", "tree/c/", "tree/d/1", "tree/d/2"]
        arguments = ("make", "new.zip", "man", self.folder / "tree/")
        for _ in range(2):
            self.assertEqual(self.run_zip(*arguments), (b"", "", 0))
            with zipfile.ZipFile(self.folder / "new.zip") as archive:
                self.assertEqual((archive.namelist(), archive.testzip()), (expected, None))
                self.assertEqual(archive.read("tree/a"), b"tree/a" * 99)
                self.assertEqual(archive.getinfo("tree/a").compress_type, zipfile.ZIP_DEFLATED)
        printed = self.run_zip("make", "-", "--stored", ".")[0]
        self.assertEqual(self.run_zip("get", "-", "tree/a", given=printed), (b"tree/a" * 99, "", 0))
        self.assertIn(b'594 594 stored ', self.run_zip("list", given=printed)[0])
        self.assertEqual(self.run_zip("make", "tree/own.zip", "tree")[2], 0)
        size = (self.folder / "tree/own.zip").stat().st_size
        self.assertEqual(self.run_zip("make", "tree/own.zip", "tree")[2], 0)  # without itself
        self.assertEqual((self.folder / "tree/own.zip").stat().st_size, size)
        (self.folder / "tree/b/up").symlink_to("..")
        self.refuse("hearth: tree/b/up: Too many levels of symbolic links", 3, "make", "new.zip", "tree")
        (self.folder / "tree/b/up").unlink()
        (self.folder / "tree/b\\1").touch()
        self.refuse("archives keep no such name", 1, "make", "new.zip", "tree")
        with zipfile.ZipFile(self.folder / "new.zip") as archive:
            self.assertEqual(archive.namelist(), expected)


@unittest.skipUnless(HAS_NET, "built without the HTTP client")
class Addresses(InFolder):
    def setUp(self):
        super().setUp()
        self.server = serve(self)

    def test_an_address_is_an_input(self):
        for path, options in (("/koi8", ()), ("/marked", ()), ("/unsaid", ()),
                              ("/unsaid", ("--encoding", "windows-1251"))):
            with self.subTest(path, options=options):
                done = run((*TEXT, *options, self.server + path))
                self.assertEqual((done.stdout.decode(), done.stderr.decode()), (RUSSIAN + "\n", ""))
        self.assertEqual(run(("encode", self.server + "/greeting")).stdout, b"Hello from far away\n")

    def test_fetch_asks_as_its_options_say(self):
        rows = [
            (("/bytes",), bytes(range(256))),
            (("/echo", "--post", "é"), "POST text/html; charset=utf-8 - é\n".encode()),
            (("/echo", "--post", "", "--type", "a/b"), b"POST a/b - \n"),
            (("/echo", "--delete", "--user", "joe:a:b"), b"DELETE text/html; charset=utf-8 Basic am9lOmE6Yg== \n"),
            (("/echo", "--timeout", "5000", "--insecure"), b"GET - - "),
        ]
        for (path, *options), expected in rows:
            with self.subTest(path, options=options):
                done = run(("fetch", self.server + path, *options))
                self.assertEqual((done.stdout, done.stderr, done.returncode), (expected, b"", 0))

    def test_what_cannot_be_read(self):
        rows = [
            (("html", self.server + "/missing"), 3, "/missing: the server answers with status 404"),
            (("fetch", self.server + "/missing", "--delete"), 3, "status 404"),
            (("html", "http://127.0.0.1:1/"), 3, "hearth: http://127.0.0.1:1/: System error 12157"),
            (("fetch", self.server.replace("http", "https"), "--post", "x"), 3, "System error 12175"),
            (("fetch", "http://u:p@127.0.0.1/"), 3, "System error 12005"),
            (("fetch", "file:///etc/passwd"), 3, "System error 12006"),
            (("fetch", self.server + "/" + "x" * 4096), 3, "the address is too long"),
            (("fetch",), 2, "URL"),
            (("fetch", self.server, "--user", "joe"), 2, "colon"),
            (("fetch", self.server, "--user", "joe:"), 2, "a password"),
            (("fetch", self.server + "/secret"), 3, "status 401\n"),
            (("fetch", self.server + "/secret", "--post", "x"), 3, "status 401\n"),
            (("fetch", self.server, "--post", "x", "--delete"), 2, "excludes"),
        ]
        before = sorted(self.folder.iterdir())
        for arguments, status, message in rows:
            with self.subTest(arguments=arguments):
                done = run((*arguments, "-o", self.folder / "page"))
                self.assertEqual((done.stdout, done.returncode), (b"", status), done.stderr)
                self.assertIn(message, done.stderr.decode())
        self.assertEqual(sorted(self.folder.iterdir()), before)


@unittest.skipIf(HAS_NET, "built with the HTTP client")
class NoAddresses(unittest.TestCase):
    def test_addresses_are_refused(self):
        done = run(("html", "http://127.0.0.1:1/"))
        self.assertEqual((done.returncode, done.stderr), (2, b"hearth: addresses need the HTTP client\n"))


class Surroundings(InFolder):
    def test_a_closed_pipe_ends_quietly(self):
        done = shell("set -o pipefail; head -c 999999 /dev/zero | tr '\\0' x | hearth html | head -c 1")
        self.assertEqual((done.stdout, done.stderr, done.returncode), ("<", "", 0))

    def test_closed_handles_are_errors_of_files(self):
        for line in ("hearth html <&-", "hearth html >&-", "hearth --help >&-", "hearth html > /dev/full"):
            with self.subTest(line):
                self.assertEqual(shell(line).returncode, 3)

    def test_a_terminal_without_input_gets_help(self):
        master, terminal = pty.openpty()
        done = subprocess.run([HEARTH, "html"], stdin=terminal, capture_output=True, text=True, check=False, timeout=60)
        os.close(master)
        os.close(terminal)
        self.assertEqual((done.stdout, done.returncode), ("", 2))
        self.assertIn("Usage: hearth html", done.stderr)

    def test_bash_completes(self):
        script = self.folder / "hearth.bash"
        self.assertEqual(run(("completions", "bash", "-o", script)).returncode, 0)
        for words, expected in (("h", "html"), ("html --as fo", "formatted"), ("html --fr", "--fragment"),
                                ("completions z", "zsh"), ("html man", ""), ("zip li", "list"),
                                ("zip get --an", "--any-ratio"), ("color --as c", "css")):
            with self.subTest(words):
                typed = ["hearth", *words.split()]
                done = shell(f"source {script}; COMP_WORDS=({' '.join(typed)}); COMP_CWORD={len(typed) - 1}; "
                             '_hearth; echo "${COMPREPLY[@]}"')
                self.assertEqual((done.stdout, done.stderr), (expected + "\n", ""))

    def test_every_command_is_in_the_manual_and_in_all_completions(self):
        found = list(commands())
        self.assertIn(("zip", "get"), found)
        for made in (("man",), ("completions", "bash"), ("completions", "zsh"), ("completions", "fish")):
            text = run(made).stdout.decode()
            for command in found:
                self.assertRegex(text, rf"\b{command[-1]}\b", made)

    def test_version_is_that_of_the_library(self):
        version = re.search(r'HEARTH_VERSION "(.*)"', (PROJECT / "src/hearth/version.h").read_text(encoding="utf-8"))
        self.assertEqual(run(("--version",)).stdout.decode(), f"hearth {version[1]}\n")


class Examples(unittest.TestCase):
    def test_examples_print_what_they_say(self):
        server = serve(self)
        texts = {"docs/cli.md": (PROJECT / "docs/cli.md").read_text(encoding="utf-8")}
        for command in commands():
            help_text = run((*command, "--help")).stdout.decode()
            texts[f"hearth {' '.join(command)} --help"] = help_text.partition("Example:\n")[2]
        for place, text in texts.items():
            found = list(examples(text))
            self.assertTrue(found, f"{place} shows no example")
            for line, printed in found:
                if not HAS_NET and "https://" in line:
                    continue
                with self.subTest(place, line=line):
                    line = line.replace("https://example.org", server)
                    self.assertEqual(shell(line, cwd=PROJECT).stdout, printed)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
