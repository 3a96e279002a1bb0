"""Runs every command of the README and compares the output and the program that it shows with what they are.

Usage: readme_test.py SOURCE_FOLDER ESTTFORM SHIFT_EXAMPLE
"""
import os
import pathlib
import re
import shlex
import subprocess
import sys
import tempfile

source, esttform, shift_example = (pathlib.Path(arg).resolve() for arg in sys.argv[1:4])
readme = (source / "README.md").read_text()
blocks = re.findall(r"```(\w*)\n(.*?)```", readme, re.S)
failures = []

outputs = {}
with tempfile.TemporaryDirectory() as folder:
    # The commands run in a copy of the folders that they name, so that nothing is left in the sources.
    (pathlib.Path(folder) / "examples").symlink_to(source / "examples")
    (pathlib.Path(folder) / "demo_output").mkdir()
    # The font library keeps its configuration until the end, which leak checkers take for lost.
    leaks = pathlib.Path(folder) / "leaks"
    leaks.write_text("leak:libfontconfig\n")
    environment = {**os.environ, "LSAN_OPTIONS": f"suppressions={leaks}:print_suppressions=0"}
    for language, text in blocks:
        for line in text.splitlines() if language == "sh" else []:
            words = shlex.split(line)
            if words[0] == "build/release/bin/esttform":
                run = subprocess.run([str(esttform), *words[1:]], cwd=folder, env=environment,
                                     capture_output=True, text=True)
                outputs[line] = run.stdout
                if run.returncode != 0:
                    failures.append(f"{line}: exit code {run.returncode}: {run.stderr}")
            elif not (source / words[0]).is_file():
                failures.append(f"{line}: no such file")

shown = next((text for language, text in blocks if language == "" and "inliers" in text), "nothing shown")
if shown not in outputs.values():
    failures.append(f"the result that is shown is none of the results:\n{shown}\n{list(outputs.values())[0]}")

program = next((text for language, text in blocks if language == "cpp"), "no program")
if program != (source / "examples/shift.cpp").read_text():
    failures.append("the C++ program that is shown is not examples/shift.cpp")
printed = subprocess.run([str(shift_example)], capture_output=True, text=True).stdout.strip()
if f"prints `{printed}`" not in readme:
    failures.append(f"examples/shift.cpp prints {printed!r}, the README says otherwise")

for target in re.findall(r"\]\(([^)#]+)\)", readme):
    if not (source / target).exists():
        failures.append(f"link to {target}: no such file")

if len(outputs) < 5:
    failures.append(f"only {len(outputs)} commands were found")
print("\n".join(failures) or f"{len(outputs)} commands, program, result and links are as shown")
sys.exit(1 if failures else 0)
