# Serves the pages beside it on the loopback and runs a program on the address of one of them.
# Called with the program and the name of the page.
# SPDX-License-Identifier: MIT
import os
import subprocess
import sys
import threading
from functools import partial
from http.server import SimpleHTTPRequestHandler, ThreadingHTTPServer
from pathlib import Path

server = ThreadingHTTPServer(
    ("127.0.0.1", 0), partial(SimpleHTTPRequestHandler, directory=Path(__file__).parent / "pages"))
threading.Thread(target=server.serve_forever, daemon=True).start()
address = f"http://127.0.0.1:{server.server_port}/{sys.argv[2]}"
sys.exit(subprocess.run([sys.argv[1], address], check=False, timeout=60,
                        env={**os.environ, "no_proxy": "*"}).returncode)
