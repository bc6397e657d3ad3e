"""nginx on a loopback port, serving files to pages of another origin."""

import pathlib
import shutil
import socket
import subprocess
import tempfile
import time

CONFIG = """
worker_processes 1;
daemon off;
pid {root}/nginx.pid;
error_log {root}/error.log;
events {{ worker_connections 64; }}
http {{
  access_log off;
  sendfile on;
  tcp_nopush on;
  tcp_nodelay on;
  client_body_temp_path {root}/body;
  proxy_temp_path {root}/proxy;
  fastcgi_temp_path {root}/fastcgi;
  uwsgi_temp_path {root}/uwsgi;
  scgi_temp_path {root}/scgi;
  types {{ text/javascript js; application/json json; }}
  add_header Access-Control-Allow-Origin *;
  server {{ listen 127.0.0.1:{port}; root {root}/files; }}
}}
"""


class Nginx:
    """`files`: bytes by name. Ended and removed with the `with` block."""

    def __init__(self, files):
        with socket.socket() as probe:
            probe.bind(("127.0.0.1", 0))
            self.port = probe.getsockname()[1]
        # World-readable: nginx drops its rights when it is started by root.
        self._root = pathlib.Path(tempfile.mkdtemp(prefix="open-bench-nginx-"))
        self._root.chmod(0o755)
        (self._root / "files").mkdir()
        for name, data in files.items():
            (self._root / "files" / name).write_bytes(data)
        (self._root / "nginx.conf").write_text(CONFIG.format(root=self._root, port=self.port))
        self._process = subprocess.Popen(["nginx", "-p", str(self._root), "-e", str(self._root / "error.log"),
                                          "-c", str(self._root / "nginx.conf")])
        try:
            self._wait()
        except Exception:
            self.stop()
            raise

    def _wait(self):
        for _ in range(200):
            try:
                socket.create_connection(("127.0.0.1", self.port), 1).close()
                return
            except OSError:
                time.sleep(0.05)
        raise RuntimeError("nginx does not listen on port %d" % self.port)

    def url(self, name):
        return "http://127.0.0.1:%d/%s" % (self.port, name)

    def stop(self):
        self._process.terminate()
        self._process.wait(10)
        shutil.rmtree(self._root, ignore_errors=True)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.stop()
