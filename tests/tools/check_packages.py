"""Are the packages right: check_packages.py --cpack CPACK --build FOLDER --version VERSION deb|source

deb     makes a .deb of what the build folder holds. lintian must find no error; the package must be of this version and
        hold the program, the man pages compressed, the copyright and the changelog. Ends with 77 without Debian's tools.
source  makes a source tarball, which must hold the project's files and nothing that was built.
Both work in a temporary folder; what the build folder holds is used as it is.
"""

import argparse
import glob
import os
import re
import shutil
import subprocess
import sys
import tarfile
import tempfile

DEB_TOOLS = ("dpkg-deb", "dpkg-shlibdeps", "file", "lintian")
DEB_FILES = ["usr/bin/orlo", "usr/bin/orlo-explain", "usr/bin/orlo-export", "usr/bin/orlo-view", "usr/share/man/man1/orlo.1.gz",
             "usr/share/man/man1/orlo-explain.1.gz", "usr/share/man/man1/orlo-export.1.gz", "usr/share/man/man1/orlo-view.1.gz",
             "usr/share/man/man5/orlo.5.gz", "usr/share/doc/orlo/copyright",
             "usr/share/bash-completion/completions/orlo-export",
             "usr/share/bash-completion/completions/orlo-explain", "usr/share/bash-completion/completions/orlo-view",
             "usr/share/doc/orlo/explain.schema.json",
             "usr/share/doc/orlo/changelog.gz", "usr/share/doc/orlo/examples/csd/first.csd",
             "usr/share/bash-completion/completions/orlo", "usr/share/mime/packages/orlo.xml",
             "usr/share/vim/vimfiles/syntax/orlo.vim", "usr/share/emacs/site-lisp/orlo-mode.el",
             "usr/share/orlo/editors/orlo.tmLanguage.json"]
SOURCE_FILES = ["CMakeLists.txt", "LICENSE", "README.md", "src/driver/main.cpp", "scripts/test", "tests/run_case.py",
                "examples/first.orlo", "docs/man/orlo.1", "docs/man/orlo-explain.1", "docs/man/orlo-export.1", "docs/man/orlo-view.1", "docs/explain.schema.json", "editors/make_editors.py"]


def run(command, **options):
    return subprocess.run(command, check=False, text=True, timeout=300,
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT, **options)


def make(command, pattern, folder):
    """Runs cpack, which must make one file of the pattern."""
    made = run(command, cwd=folder)
    files = glob.glob(os.path.join(folder, pattern))
    if made.returncode != 0 or len(files) != 1:
        sys.exit(f"cpack ended with {made.returncode} and made {files}:\n{made.stdout}")
    return files[0]


def check_deb(cpack, build, version, folder):
    # with the name of a generator that has no target "preinstall" cpack packs what is there instead of building it first
    config = os.path.join(build, "CPackConfig.cmake")
    package = make([cpack, "--config", config, "-G", "DEB", "-B", folder, "-D", "CPACK_CMAKE_GENERATOR=Ninja"], "*.deb", folder)
    lintian = run(["lintian", "--allow-root", "--fail-on", "error", package])
    print(lintian.stdout, end="")
    faults = [f"lintian ended with {lintian.returncode}"] if lintian.returncode != 0 else []

    fields = dict(line.split(": ", 1) for line in run(["dpkg-deb", "--field", package]).stdout.splitlines()
                  if re.match(r"[A-Z][\w-]*: ", line))
    if fields.get("Version") != version:
        faults.append(f"the package's version is {fields.get('Version')}, the project's {version}")
    if "libc6" not in fields.get("Depends", ""):
        faults.append(f"the package depends on {fields.get('Depends')}")
    unpacked = os.path.join(folder, "unpacked")
    subprocess.run(["dpkg-deb", "--extract", package, unpacked], check=True, timeout=60)
    faults += [f"not in the package: {name}" for name in DEB_FILES if not os.path.isfile(os.path.join(unpacked, name))]
    usage = run([os.path.join(unpacked, "usr/bin/orlo")]).stdout
    if f"\nOrlo ({version}, " not in usage:
        faults.append(f"the packed program says:\n{usage}")
    return faults, package


def check_source(cpack, build, version, folder):
    config = os.path.join(build, "CPackSourceConfig.cmake")
    package = make([cpack, "--config", config, "-B", folder], "*.tar.gz", folder)
    top = f"orlo-{version}/"
    with tarfile.open(package) as tar:
        names = tar.getnames()
    faults = [f"not below {top}: {name}" for name in names if not (name + "/").startswith(top)]
    faults += [f"not in the tarball: {name}" for name in SOURCE_FILES if top + name not in names]
    faults += [f"no use in the tarball: {name}" for name in names
               if re.search(r"/([.]git|build|__pycache__|CMakeFiles|_CPack_Packages)(/|$)|CMakeCache[.]txt|[.](o|a|pyc)$", name)]
    return faults[:20], package


def main():
    parser = argparse.ArgumentParser(description="make packages and look at them")
    parser.add_argument("--cpack", required=True, help="the cpack of the cmake that has configured the build folder")
    parser.add_argument("--build", required=True, help="the build folder")
    parser.add_argument("--version", required=True, help="the project's version")
    parser.add_argument("kind", choices=("deb", "source"))
    options = parser.parse_args()
    missing = [tool for tool in DEB_TOOLS if not shutil.which(tool)] if options.kind == "deb" else []
    if missing:
        print(f"skipped: not installed: {', '.join(missing)}")
        return 77

    with tempfile.TemporaryDirectory(prefix="orlo-package-") as folder:
        check = check_deb if options.kind == "deb" else check_source
        faults, package = check(options.cpack, options.build, options.version, folder)
        print("\n".join(faults or [f"{os.path.basename(package)}: {os.path.getsize(package)} bytes, as it should be"]))
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
