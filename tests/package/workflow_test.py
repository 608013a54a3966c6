"""workflow_test.py SOURCE: what has never been run. The workflows: their syntax, and that everything they name exists. The
build with Visual C++: what is known to break it.
"""
import fnmatch
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


def files(name):
    return [path for path in SOURCE.rglob(name) if path.relative_to(SOURCE).parts[0] != "build"]


def jobs():
    return [item for path in WORKFLOWS for item in yaml.safe_load(text(path))["jobs"].items()]


def steps(job):
    return [step for name, found in jobs() if name == job for step in found["steps"]]


def scripts():
    """(job, commands of a step), for every value of its matrix."""
    for name, job in jobs():
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
                self.assertLessEqual(set(job), 
                    {"runs-on", "steps", "needs", "strategy", "container", "defaults", "env", "timeout-minutes"})
                for step in job["steps"]:
                    self.assertEqual(1, len({"run", "uses"} & set(step)), step)
                    self.assertLessEqual(set(step), {"run", "uses", "name", "if", "with", "continue-on-error"}, step)
                    self.assertRegex(step.get("uses", "owner/action@v1"), r"^[\w-]+/[\w-]+@v\d+$")

    def test_scripts_are_valid_shell(self):
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
        self.assertEqual({"windows-msvc", "tests"}, used)

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
        preset = "windows-msvc"
        wanted = ["debian .ci/run", "kit scripts/package.sh packages", *(f"kit-on-windows {words}" for words in (
            "cmake -E tar xf", "kit/bin/vndiscover.exe --version", "kit/bin/VnBrowser.exe --exit", "kit/bin/windows_check.exe")),
                  *(f"windows {words}" for words in (
                      f"cmake --build --preset {preset}", f"ctest --test-dir build/{preset} -C Release -E",
                      f"ctest --test-dir build/{preset} -C Release -R", "cmake --install",
                      f"cmake --build --preset {preset} --target package", "test -s kit/bin/VnBrowser.exe",
                      "kit/bin/windows_check.exe", "cmake -S kit/examples", "cmake --build build/examples"))]
        lines = [f"{job} {shlex.join(words)}" for job, words in commands()]
        for line in wanted:
            self.assertTrue([found for found in lines if found.startswith(line)], line)
        self.assertEqual(["bookworm", "trixie"], dict(jobs())["debian"]["strategy"]["matrix"]["release"])

    def test_in_a_container_git_reads_the_folder(self):
        for name, job in jobs():
            if "container" in job:
                texts = [step.get("run", step.get("uses")) for step in job["steps"]]
                checkout = next(at for at, found in enumerate(texts) if found.startswith("actions/checkout@"))
                self.assertEqual('git config --global --add safe.directory "$PWD"', texts[checkout + 1], name)

    def test_what_no_windows_has_shown_yet_reddens_nothing(self):
        for name, job in jobs():
            for step in job["steps"]:
                may_fail = re.search(r"windows_check\.exe|-R '\^unit\\\.window\$'", step.get("run", ""))
                self.assertEqual(bool(may_fail), step.get("continue-on-error", False), f"{name}: {step}")
        tests = [script for _, script in scripts() if script.startswith("ctest ")]
        self.assertEqual(2, len(tests))
        self.assertEqual(tests[1], tests[0].replace(" -E ", " -R "), "each suite runs in one of the two steps")

    def test_the_kit_runs_on_windows_as_debian_built_it(self):
        job = dict(jobs())["kit-on-windows"]
        self.assertEqual("kit", job["needs"])
        uploads = {step["with"]["name"] for step in steps("kit") if step.get("uses", "").startswith("actions/upload-artifact@")}
        self.assertEqual(uploads, {step["with"]["name"] for step in job["steps"]
                                   if step.get("uses", "").startswith("actions/download-artifact@")})
        for where, words in commands():
            if where == "kit-on-windows":
                self.assertNotRegex(shlex.join(words), r"--(preset|build|install)|-[SB] |ctest|scripts/")
        archive = re.search(r"CPACK_PACKAGE_FILE_NAME (\S+)\)", text("cmake/Package.cmake"))[1]
        archive = re.sub(r"\$\{\w+\}", "1.0.0", archive)
        for pattern in ("VnDiscover-*.zip", "VnDiscover-*-win64"):
            self.assertTrue(fnmatch.fnmatch(archive + ".zip" * pattern.endswith(".zip"), pattern), archive)
            self.assertTrue([words for where, words in commands() if where == "kit-on-windows" and pattern in words])

    def test_reports_are_uploaded_from_where_they_are(self):
        for name, _ in jobs():
            written = {words[words.index("--report") + 1] for where, words in commands() if where == name and "--report" in words}
            uploaded = {path for step in steps(name) if step.get("uses", "").startswith("actions/upload-artifact@")
                        for path in step["with"]["path"].split()}
            self.assertLessEqual(written, uploaded, name)


class VisualCpp(unittest.TestCase):
    def test_the_linker_adds_no_second_manifest(self):
        function = re.search(r"function\(vndiscover_program [^)]*\)(.*?)endfunction", text("cmake/CompileOptions.cmake"), re.S)[1]
        self.assertRegex(function, r"program\.manifest")
        self.assertRegex(function, r"if\(MSVC\)\s+target_link_options\(\$\{target\} PRIVATE /MANIFEST:NO\)\s+endif")
        for path in files("*.rc") + files("*.rc.in"):  # only that function gives a manifest
            self.assertNotRegex(path.read_text(encoding="utf-8"), r"(?m)RT_MANIFEST|^\d+ 24 ", path)


if __name__ == "__main__":
    unittest.main()
