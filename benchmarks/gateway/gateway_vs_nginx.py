#!/usr/bin/env python3
"""Compares the request gateway's answers from memory with nginx serving the same bytes from a file.

Both are driven by wrk on this machine, turn by turn, so that whatever else runs here hits both alike. Each
pair of neighbouring runs gives one ratio; the medians of those are the result.

  gateway_vs_nginx.py --server build/release/bin/gateway_bench_server [--runs 5] [--seconds 3] [--out FILE]

Writes FILE.json and FILE.md, and prints the table. Ends with status 1 when a target is missed (with --check).
"""

import argparse
import json
import os
import pathlib
import shutil
import socket
import statistics
import subprocess
import sys
import tempfile
import time

SIZES = {"1 KiB": 1024, "100 KiB": 100 * 1024, "4 MiB": 4 * 1024 * 1024}
CONNECTIONS = (1, 8, 32)
LEAST_THROUGHPUT = 0.9
MOST_LATENCY = 1.1

NGINX_CONFIG = """
worker_processes auto;
daemon off;
pid {root}/nginx.pid;
error_log {root}/error.log;
events {{ worker_connections 1024; }}
http {{
  access_log off;
  sendfile on;
  tcp_nopush on;
  tcp_nodelay on;
  keepalive_requests 1000000000;
  client_body_temp_path {root}/body;
  proxy_temp_path {root}/proxy;
  fastcgi_temp_path {root}/fastcgi;
  uwsgi_temp_path {root}/uwsgi;
  scgi_temp_path {root}/scgi;
  default_type application/octet-stream;
  server {{ listen 127.0.0.1:{port}; root {root}/files; }}
}}
"""

# What wrk reports in its own units, as microseconds and plain numbers.
REPORT = """
done = function(summary, latency, requests)
  local errors = summary.errors
  io.write(string.format('RESULT {"requests": %d, "us": %d, "bytes": %d, "median_us": %f, "errors": %d}\\n',
    summary.requests, summary.duration, summary.bytes, latency:percentile(50),
    errors.connect + errors.read + errors.write + errors.status + errors.timeout))
end
"""


def free_port():
    with socket.socket() as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]


def wait_for_port(port):
    for _ in range(200):
        try:
            socket.create_connection(("127.0.0.1", port), 1).close()
            return
        except OSError:
            time.sleep(0.05)
    raise SystemExit(f"nothing listens on port {port}")


def wrk(port, script, connections, seconds):
    """One run; the script names what is asked for."""
    command = ["wrk", f"-t{min(connections, 2)}", f"-c{connections}", f"-d{seconds}s", "-s", str(script),
               f"http://127.0.0.1:{port}/"]
    output = subprocess.run(command, check=True, capture_output=True, text=True).stdout
    line = next(line for line in output.splitlines() if line.startswith("RESULT "))
    result = json.loads(line[len("RESULT "):])
    if result["errors"] or not result["requests"]:
        raise SystemExit(f"{' '.join(command)}: failed requests\n{output}")
    result["per_second"] = result["requests"] / (result["us"] / 1e6)
    return result


def write_scripts(root, access):
    """One wrk script per contender and size. Both get the same header fields, so that both read as much."""
    scripts = {}
    fields = {"Proxy-Authorization": access["authorization"], access["viewHeader"]: access["view"]}
    headers = "".join(f'wrk.headers["{name}"] = "{value}"\n' for name, value in fields.items())
    for index, size in enumerate(SIZES):
        for contender, path in (("gateway", access["origin"] + str(index)), ("nginx", f"/{index}")):
            script = root / f"{contender}{index}.lua"
            script.write_text(headers + f'wrk.path = "{path}"\n' + REPORT)
            scripts[contender, size] = script
    return scripts


def measure(ports, scripts, runs, seconds):
    results = []
    for size in SIZES:
        for connections in CONNECTIONS:
            taken = {"gateway": [], "nginx": []}
            for run in range(runs + 1):
                order = ("gateway", "nginx") if run % 2 else ("nginx", "gateway")
                for contender in order:
                    result = wrk(ports[contender], scripts[contender, size], connections, seconds if run else 1)
                    if run:  # the first only warms up
                        taken[contender].append(result)
            pairs = list(zip(taken["gateway"], taken["nginx"]))
            row = {"size": size, "connections": connections, "runs": taken}
            for contender, values in taken.items():
                row[contender] = {"per_second": statistics.median(v["per_second"] for v in values),
                                  "median_us": statistics.median(v["median_us"] for v in values)}
            row["throughput_ratio"] = statistics.median(g["per_second"] / n["per_second"] for g, n in pairs)
            row["latency_ratio"] = statistics.median(g["median_us"] / n["median_us"] for g, n in pairs)
            results.append(row)
            print(f"{size}, {connections} connections: throughput x{row['throughput_ratio']:.2f}, "
                  f"latency x{row['latency_ratio']:.2f}", file=sys.stderr, flush=True)
    return results


def table(results):
    lines = ["| Body | Connections | gateway req/s | nginx req/s | ratio | gateway median µs | nginx median µs | ratio |",
             "|---|---|---|---|---|---|---|---|"]
    for row in results:
        g, n = row["gateway"], row["nginx"]
        lines.append(f"| {row['size']} | {row['connections']} | {g['per_second']:.0f} | {n['per_second']:.0f} "
                     f"| {row['throughput_ratio']:.2f} | {g['median_us']:.0f} | {n['median_us']:.0f} "
                     f"| {row['latency_ratio']:.2f} |")
    return "\n".join(lines) + "\n"


def meets_targets(row):
    return row["throughput_ratio"] >= LEAST_THROUGHPUT and row["latency_ratio"] <= MOST_LATENCY


def stop(process):
    process.terminate()
    process.wait(10)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--server", required=True, type=pathlib.Path)
    parser.add_argument("--runs", type=int, default=5)
    parser.add_argument("--seconds", type=int, default=3)
    parser.add_argument("--out", type=pathlib.Path)
    parser.add_argument("--check", action="store_true", help="status 1 when a target is missed")
    arguments = parser.parse_args()

    root = pathlib.Path(tempfile.mkdtemp(prefix="gateway-bench-"))
    processes = []
    try:
        # World-readable: nginx drops its rights when it is started by root.
        root.chmod(0o755)
        files = root / "files"
        files.mkdir()
        for index, size in enumerate(SIZES.values()):
            (files / str(index)).write_bytes(os.urandom(size))
        bodies = [argument for index in range(len(SIZES)) for argument in ("--body-file", str(files / str(index)))]
        gateway = subprocess.Popen([str(arguments.server), *bodies], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                   text=True)
        processes.append(gateway)
        access = json.loads(gateway.stdout.readline())
        port = free_port()
        (root / "nginx.conf").write_text(NGINX_CONFIG.format(root=root, port=port))
        processes.append(subprocess.Popen(["nginx", "-p", str(root), "-e", str(root / "error.log"),
                                           "-c", str(root / "nginx.conf")]))
        wait_for_port(port)

        ports = {"gateway": access["port"], "nginx": port}
        results = measure(ports, write_scripts(root, access), arguments.runs, arguments.seconds)
    finally:
        for process in processes:
            stop(process)
        shutil.rmtree(root, ignore_errors=True)

    print(table(results), end="")
    if arguments.out:
        arguments.out.with_suffix(".json").write_text(json.dumps(results, indent=1) + "\n")
        arguments.out.with_suffix(".md").write_text(table(results))
    missed = [row for row in results if not meets_targets(row)]
    return 1 if arguments.check and missed else 0


if __name__ == "__main__":
    sys.exit(main())
