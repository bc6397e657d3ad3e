"""Updating a record of 2,000 beside writing the same JSON text; prints a markdown table.

    records_bench.py BUILD_DIR
"""

import json
import os
import subprocess
import sys

program = os.path.join(sys.argv[1], "bin", "records_bench")
output = subprocess.run([program, "--benchmark_format=json", "--benchmark_repetitions=9",
                         "--benchmark_enable_random_interleaving=true", "--benchmark_report_aggregates_only=true"],
                        capture_output=True, text=True, check=True)
medians = {run["run_name"]: run["real_time"] / 1e6 for run in json.loads(output.stdout)["benchmarks"]
           if run["aggregate_name"] == "median"}
floor, update = medians["write_json_text"], medians["update_record"]
print("| Record store with 2,000 files | ms | ratio | wanted |\n|---|---|---|---|")
print("| writing the records' JSON text into a file | %.2f | 1.00 | |" % floor)
print("| updating a record | %.2f | %.2f | at most 3 |" % (update, update / floor))
