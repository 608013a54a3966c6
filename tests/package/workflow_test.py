"""workflow_test.py SOURCE: the workflows, which have not been run: their syntax, and that everything they name exists."""
import itertools
import json
import re
import shlex
import shutil
import subprocess
import sys
import unittest
from pathlib import Path

import yaml

SOURCE = Path(sys.argv.pop(1))
WORKFLOWS = sorted((SOURCE / ".github/workflows").glob("*.yml"))


def text(name):
    return (SOURCE / name).read_text(encoding="utf-8")


def scripts():
    """(job, commands of a step), for every value of its matrix."""
    for path in WORKFLOWS:
        for name, job in yaml.safe_load(text(path))["jobs"].items():
            matrix = job.get("strategy", {}).get("matrix", {})
            for values in itertools.product(*matrix.values()):
                for step in job["steps"]:
                    if "run" in step:
                        yield name, re.sub(r"\$\{\{ matrix\.(\w+) \}\}",
                                           lambda m, v=dict(zip(matrix, values)): v[m[1]], step["run"])


def commands():
    for job, script in scripts():
        for command in re.split(r"\n|&&|\|\|", script.strip()):
            yield job, shlex.split(command)


class Workflows(unittest.TestCase):
    def test_each_is_marked_as_never_run(self):
        self.assertTrue(WORKFLOWS)
        for path in WORKFLOWS:
            self.assertTrue(text(path).startswith("# NEVER RUN YET: "), path)

    def test_jobs_and_steps_have_the_forge_s_keys(self):
        for path in WORKFLOWS:
            workflow = yaml.safe_load(text(path))
            self.assertEqual({"name", True, "jobs"}, set(workflow))  # YAML reads "on" as true
            for job in workflow["jobs"].values():
                self.assertLessEqual({"runs-on", "steps"}, set(job))
                self.assertLessEqual(set(job), {"runs-on", "steps", "strategy", "container", "defaults", "env"})
                for step in job["steps"]:
                    self.assertEqual(1, len({"run", "uses"} & set(step)), step)
                    self.assertLessEqual(set(step), {"run", "uses", "name", "if", "with"}, step)
                    self.assertRegex(step.get("uses", "owner/action@v1"), r"^[\w-]+/[\w-]+@v\d+$")

    def test_scripts_are_shell_and_every_variable_of_the_matrix_is_one(self):
        for _, script in scripts():
            self.assertNotIn("${{", script)
            subprocess.run(["bash", "-n"], input=script, text=True, check=True)

    def test_every_command_exists(self):
        kit = text("tests/package/kit_test.py")
        for _, (program, *_) in commands():
            if program.startswith("kit/"):
                self.assertRegex(kit, rf"\s{re.escape(program[4:])}\s")
            elif "/" in program:
                self.assertTrue((SOURCE / program).stat().st_mode & 0o100, program)
            else:
                self.assertTrue(shutil.which(program), program)

    def test_presets_options_and_features_exist(self):
        presets = json.loads(text("CMakePresets.json")), json.loads(text("cmake/presets/windows.json"))
        cmake = "".join(path.read_text(encoding="utf-8") for path in (SOURCE / "cmake").glob("*.cmake"))
        known = {
            "--preset": {preset["name"] for file in presets for preset in file["configurePresets"]}
                        & {preset["name"] for file in presets for preset in file["buildPresets"]},
            "VCPKG_MANIFEST_FEATURES": json.loads(text("vcpkg.json"))["features"]}
        used = set()
        for _, words in commands():
            for option, value in itertools.chain(zip(words, words[1:]),
                                                 (word[2:].split("=") for word in words if word.startswith("-D"))):
                if option in known:
                    used.add(value)
                    self.assertIn(value, known[option])
                elif option.startswith("VNDISCOVER_"):
                    self.assertIn(f"({option} ", text("CMakeLists.txt") + cmake)
        self.assertEqual({"windows-msvc", "windows-mingw", "tests"}, used)

    def test_what_windows_tests_needs_no_lab(self):
        lists = text("tests/CMakeLists.txt")
        on_windows, labs = lists.split("if(CMAKE_HOST_WIN32)\n    return()")
        self.assertIn("lab_scripts", labs)
        emptied = re.findall(r"^    set\((\w+)\)$", on_windows, re.M)  # where CMAKE_HOST_WIN32 is set
        for test in re.findall(r"^ *vn_test\([^)]*\)", on_windows, re.M):
            for prefix in emptied:
                test = test.replace(f"${{{prefix}}}", "")
            self.assertNotRegex(test, r"lab|\.sh|python3")

    def test_the_whole_list_is_there(self):
        wanted = ["debian .ci/run"] + [f"windows {words}" for preset in ("windows-msvc", "windows-mingw") for words in (
            f"cmake --build --preset {preset}", f"ctest --test-dir build/{preset}", "cmake --install", "cpack", "test -s kit/bin/VnBrowser.exe",
            "kit/bin/windows_check.exe", "cmake -S kit/examples", "cmake --build build/examples")]
        lines = [f"{job} {shlex.join(words)}" for job, words in commands()]
        for line in wanted:
            self.assertTrue([found for found in lines if found.startswith(line)], line)
        self.assertEqual(["bookworm", "trixie"], yaml.safe_load(text(WORKFLOWS[0].relative_to(SOURCE)))["jobs"]["debian"]["strategy"]["matrix"]["release"])


if __name__ == "__main__":
    unittest.main()
