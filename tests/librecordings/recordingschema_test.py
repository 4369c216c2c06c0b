"""The schema of recordings accepts the lines of the writer and of the page, and refuses those that the reader refuses.

Usage: recordingschema_test.py SCHEMA PAGE WRITER
"""

import json
import re
import subprocess
import sys

SKIPPED = 77

try:
    import jsonschema
except ImportError:
    print("skipped: python3-jsonschema is not installed")
    sys.exit(SKIPPED)

REFUSED = [
    "{}",
    '{"time":2.5}',
    '{"time":"2"}',
    '{"time":9223372036854775808}',
    '{"time":2,"persn":1}',
    '{"time":2,"person":2147483648}',
    '{"time":2,"seen":false}',
    '{"time":2,"observation":{"distance":{"value":1}}}',
    '{"time":2,"person":1,"seen":false,"observation":{"distance":{"value":1}}}',
    '{"time":2,"person":1,"observation":{"smil":{"value":1,"confidence":1}}}',
    '{"time":2,"person":1,"observation":{"smile":{"value":1}}}',
    '{"time":2,"person":1,"observation":{"smile":{"value":"0.5","confidence":1}}}',
    '{"time":2,"person":1,"observation":{"distance":{"value":null}}}',
    '{"time":2,"person":1,"observation":{"distance":{"value":1e39}}}',
    '{"time":2,"person":1,"observation":{"distance":{"value":1,"unit":"m"}}}',
    '{"time":2,"person":1,"observation":{"age":{"value":-1,"confidence":1}}}',
    '{"time":2,"person":1,"observation":{"facialPoints":{"points":[[1,2,3]]}}}',
    '{"time":2,"person":1,"observation":{"voiceEmotion":{"surprise":{"value":1,"confidence":1}}}}',
    '{"time":2,"person":1,"observation":{"expressions":{"joy":0.5}}}',
    '{"time":2,"stop":"greeting"}',
    '{"time":2,"start":[{"samples":2}]}',
    '{"time":2,"ambiance":{"movements":-1}}',
    "[1,2]",
]


def check_taken(validator, lines, source):
    assert lines, f"{source}: there is no line"
    for line in lines:
        error = jsonschema.exceptions.best_match(validator.iter_errors(json.loads(line)))
        assert error is None, f"{source}: refused: {line}\n{error}"
    print(f"{source}: {len(lines)} lines taken")


def main(schema_path, page_path, writer):
    with open(schema_path, encoding="utf-8") as file:
        schema = json.load(file)
    jsonschema.Draft202012Validator.check_schema(schema)
    validator = jsonschema.Draft202012Validator(schema)

    with open(page_path, encoding="utf-8") as file:
        blocks = re.findall(r"^```json\n(.*?)^```", file.read(), re.MULTILINE | re.DOTALL)
    check_taken(validator, "".join(blocks).splitlines(), "page")

    written = subprocess.run([writer, "4711", "300"], check=True, capture_output=True, text=True).stdout
    check_taken(validator, written.splitlines(), "writer")

    for line in REFUSED:
        assert not validator.is_valid(json.loads(line)), f"taken: {line}"
    print(f"{len(REFUSED)} lines refused")


if __name__ == "__main__":
    main(*sys.argv[1:])
