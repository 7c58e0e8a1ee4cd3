"""No folder of the sources includes one above it: check_layers.py FOLDER"""

import pathlib
import re
import sys

FLOORS = "base", "platform", "diag", "input", "events", "words", "ddf", "lang", "driver"  # from the ground
MAY = {floor: set(FLOORS[:height + 1]) for height, floor in enumerate(FLOORS)}
MAY["output"] = MAY["events"] | {"output"}
MAY["driver"] |= {"output"}
MAY["tables"] = MAY["driver"] | {"tables"}  # shows what all others hold
MAY["score"] = {"base", "platform", "score"}  # knows files, not the program that writes them
MAY["view"] = MAY["score"] | {"view"}
MAY["gather"] = MAY["driver"] | {"gather"}  # watches a run
MAY["explain"] = MAY["gather"] | {"explain"}
MAY["export"] = MAY["gather"] | MAY["score"] | {"export"}


def faults(root):
    files = [path.relative_to(root) for path in sorted(root.glob("*/**/*")) if path.suffix in (".h", ".cpp")]
    for path in files:
        for name in re.findall(r'^[ \t]*#[ \t]*include[ \t]*"([^"]+)"', (root / path).read_text(encoding="utf-8"), re.M):
            system = pathlib.PurePath(name).parts[:2] if re.match("platform/.*/", name) else path.parts[:2]  # as in platform/posix/
            if name.split("/")[0] not in MAY.get(path.parts[0], ()) or system != path.parts[:2]:
                yield f'{path}: may not include "{name}"'
    if not files:
        yield f"{root}: no sources"


if __name__ == "__main__":
    sys.exit("\n".join(faults(pathlib.Path(sys.argv[1]))) or 0)
