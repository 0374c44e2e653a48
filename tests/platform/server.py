# Serves the replies of one exchange file on the loopback, plainly and over TLS, and tells which requests it got.
# Called with the file and a folder for certificates. Prints the two ports; at the end of its standard input it
# prints the requests, each under the number of its connection, and ends.
# SPDX-License-Identifier: MIT
import os
import re
import shutil
import socket
import ssl
import struct
import subprocess
import sys
import threading
from pathlib import Path

EXCHANGE = Path(sys.argv[1])
FOLDER = Path(sys.argv[2])
TLS_RECORD = b"\x16"
VERSIONS = {"1.0": ssl.TLSVersion.TLSv1, "1.2": ssl.TLSVersion.TLSv1_2, "1.3": ssl.TLSVersion.TLSv1_3}


def sections(text):
    """(name, words behind it, text) of each section; what stands in front of the first is for people."""
    parts = re.split(r"^\[(\w+)([^\]\n]*)\]\n", text, flags=re.MULTILINE)
    return [(parts[i], parts[i + 1].split(), parts[i + 2].removesuffix("\n")) for i in range(1, len(parts), 3)]


def openssl(*words):
    subprocess.run(["openssl", *words], cwd=FOLDER, check=True, stdin=subprocess.DEVNULL, stderr=subprocess.DEVNULL)


def make_certificate(name, subject, authority=None, *options):
    signer = ("-CA", f"{authority}.pem", "-CAkey", f"{authority}.key") if authority else ()
    openssl("req", "-x509", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:P-256", "-nodes", "-days", "2", "-subj",
            f"/CN={subject}", "-keyout", f"{name}.key", "-out", f"{name}.pem", *signer, *options)


def make_certificates():
    """Two authorities, the server's certificate, and one client of each authority in a folder of both."""
    make_certificate("authority", "Authority")
    make_certificate("server", "127.0.0.1", "authority", "-addext", "subjectAltName=IP:127.0.0.1,DNS:localhost")
    make_certificate("stranger", "Stranger")
    (FOLDER / "store").mkdir()
    for name, signer in (("a-foreign", "stranger"), ("b-known", "authority")):
        make_certificate(name, name, signer)
        both = (FOLDER / f"{name}.key").read_bytes() + (FOLDER / f"{name}.pem").read_bytes()
        (FOLDER / "store" / f"{name}.pem").write_bytes(both)
    (FOLDER / "known").mkdir()
    shutil.copy(FOLDER / "authority.pem", FOLDER / "known")
    openssl("rehash", "known")
    (FOLDER / "store" / "c-broken.pem").write_bytes(b"-----BEGIN CERTIFICATE-----\nAAAA\n")
    openssl("pkcs12", "-export", "-in", "b-known.pem", "-inkey", "b-known.key", "-out", "known.p12",
            "-passout", "pass:secret")


def tls_context(words):
    make_certificates()
    context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
    context.load_cert_chain(FOLDER / "server.pem", FOLDER / "server.key")
    for word in words:
        if word in VERSIONS:
            context.set_ciphers("DEFAULT@SECLEVEL=0")
            context.minimum_version = context.maximum_version = VERSIONS[word]
        if word in ("client", "optional"):
            context.verify_mode = ssl.CERT_REQUIRED if word == "client" else ssl.CERT_OPTIONAL
            context.load_verify_locations(FOLDER / "authority.pem")
    return context


def openssl_server():
    """A server that names the authorities it accepts, which Python's does not; it answers with a page of its own."""
    words = ["openssl", "s_server", "-www", "-accept", "127.0.0.1:0", "-cert", "server.pem", "-key", "server.key",
             "-Verify", "1", "-verify_return_error", "-CAfile", "authority.pem"]
    process = subprocess.Popen(words, cwd=FOLDER, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                               stderr=subprocess.DEVNULL, text=True)
    while not (line := process.stdout.readline()).startswith("ACCEPT "):
        pass
    return process, int(line.rpartition(":")[2])


class Server:
    def __init__(self, text):
        self.lock = threading.Lock()
        self.requests = []
        self.connections = 0
        found = sections(text)
        tls = [words for name, words, _ in found if name == "tls"]
        self.context = tls_context(tls[0]) if tls else None
        self.tls_once = bool(tls) and "once" in tls[0]
        self.plain = socket.create_server(("127.0.0.1", 0))
        self.secure = socket.create_server(("127.0.0.1", 0))
        self.openssl, self.named_port = openssl_server() if tls and "names" in tls[0] else (None, 0)
        self.replies = iter([(words, self.reply(body)) for name, words, body in found if name == "reply"])
        for listener, context in ((self.plain, None), (self.secure, self.context)):
            threading.Thread(target=self.accept, args=(listener, context), daemon=True).start()

    def ports(self):
        plain = self.plain.getsockname()[1]
        return plain, self.named_port if self.openssl else self.secure.getsockname()[1]

    def reply(self, text):
        """The bytes of a reply: its head with the line ends of the wire, its body with \\xNN as bytes."""
        for name, port in zip(("HTTP", "HTTPS"), self.ports()):
            text = text.replace(f"%{name}%", f"127.0.0.1:{port}").replace(f"%{name}PORT%", str(port))
        head, _, body = text.partition("\n\n")
        body = re.sub(rb"\\x([0-9A-F]{2})", lambda match: bytes([int(match[1], 16)]), body.encode())
        return head.replace("\n", "\r\n").encode() + b"\r\n\r\n" + body

    def accept(self, listener, context):
        while True:
            connection, _ = listener.accept()
            threading.Thread(target=self.serve, args=(connection, context), daemon=True).start()
            if self.tls_once:
                context = None

    def serve(self, connection, context):
        try:
            if context:
                connection = context.wrap_socket(connection, server_side=True)
            with connection:
                number = None
                certificate = self.certificate_of(connection)
                while request := self.read_request(connection):
                    with self.lock:
                        if number is None:
                            self.connections += 1
                            number = f"{self.connections}{certificate}"
                        self.requests.append((number, request))
                        words, reply = next(self.replies)
                    if "reset" in words:
                        connection.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, struct.pack("ii", 1, 0))
                        return
                    connection.sendall(reply)
                    if not self.go_on(connection, words):
                        return
        except (OSError, StopIteration):
            connection.close()

    @staticmethod
    def certificate_of(connection):
        """The name in the client's certificate, behind a blank; nothing when there is none."""
        known = connection.getpeercert() if isinstance(connection, ssl.SSLSocket) else None
        return "".join(f" {name[0][1]}" for name in known["subject"]) if known else ""

    @staticmethod
    def go_on(connection, words):
        if "close" in words:
            return False
        while "endless" in words:
            connection.sendall(b"x" * 65536)
        while "heads" in words:
            connection.sendall(b"HTTP/1.1 100 Continue\r\n\r\n" * 1000)
        while "stall" in words and connection.recv(4096):
            pass
        return True

    @staticmethod
    def read_request(connection):
        """One request with its body; nothing at the end, and for those who speak TLS to the plain port."""
        data = b""
        while b"\r\n\r\n" not in data:
            piece = connection.recv(65536)
            if not piece or (data + piece).startswith(TLS_RECORD):
                return b""
            data += piece
        head, _, body = data.partition(b"\r\n\r\n")
        length = re.search(rb"^Content-Length: (\d+)", head, re.MULTILINE)
        while length and len(body) < int(length[1]):
            body += connection.recv(65536)
        return head + b"\r\n\r\n" + body


def shown(request):
    """As it stands in the exchange files: without the line ends of the wire, nor the blank line before no body."""
    return request.decode("latin-1").replace("\r\n", "\n").removesuffix("\n\n")


def main():
    server = Server(EXCHANGE.read_text(encoding="utf-8"))
    print(*server.ports(), flush=True)
    sys.stdin.read()
    with server.lock:
        for number, request in server.requests:
            sys.stdout.write(f"[request {number}]\n" + shown(request) + "\n")
    sys.stdout.flush()
    if server.openssl:
        server.openssl.kill()
    os._exit(0)


if __name__ == "__main__":
    main()
