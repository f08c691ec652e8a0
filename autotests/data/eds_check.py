"""Reads an EDS with Python's configparser and checks the rules of the format that the exporter
relies on. Prints one line per violation and, last, "objects N" (the number of object sections).
Exit status 0 when every rule holds."""
import configparser
import re
import sys

INTEGER = {0x0001: (0, 1), 0x0002: (-2**7, 2**7 - 1), 0x0003: (-2**15, 2**15 - 1), 0x0004: (-2**31, 2**31 - 1),
           0x0015: (-2**63, 2**63 - 1), 0x0005: (0, 2**8 - 1), 0x0006: (0, 2**16 - 1), 0x0007: (0, 2**32 - 1),
           0x001B: (0, 2**64 - 1)}
REAL = {0x0008, 0x0011}
OTHER = {0x0009, 0x000A, 0x000B, 0x000C, 0x000D, 0x000F}
ACCESS = {"ro", "wo", "rw", "rwr", "rww", "const"}
problems = []


def fail(text):
    problems.append(text)


def number(text):
    return int(text, 0)


def check_value(section, key, code):
    if key not in section:
        return None
    text = section[key]
    if code in INTEGER:
        try:
            value = number(text)
        except ValueError:
            fail(f"[{section.name}] {key}={text} is no integer")
            return None
        low, high = INTEGER[code]
        if not low <= value <= high:
            fail(f"[{section.name}] {key}={text} lies outside the range of type 0x{code:04X}")
        return value
    if code in REAL:
        try:
            return float(text)
        except ValueError:
            fail(f"[{section.name}] {key}={text} is no number")
            return None
    if key != "DefaultValue":
        fail(f"[{section.name}] {key} for type 0x{code:04X}, which has no limits")
    return None


def check_entry(section):
    for key in ("ParameterName", "ObjectType", "DataType", "AccessType", "PDOMapping"):
        if key not in section:
            fail(f"[{section.name}] has no {key}")
            return
    if len(section["ParameterName"]) > 241:
        fail(f"[{section.name}] ParameterName is longer than 241 characters")
    if number(section["ObjectType"]) != 0x7:
        fail(f"[{section.name}] entry of ObjectType {section['ObjectType']}")
    code = number(section["DataType"])
    if code not in INTEGER and code not in REAL and code not in OTHER:
        fail(f"[{section.name}] DataType {section['DataType']} is no valid code")
        return
    if section["AccessType"] not in ACCESS:
        fail(f"[{section.name}] AccessType {section['AccessType']}")
    if section["PDOMapping"] not in ("0", "1"):
        fail(f"[{section.name}] PDOMapping {section['PDOMapping']}")
    low = check_value(section, "LowLimit", code)
    high = check_value(section, "HighLimit", code)
    check_value(section, "DefaultValue", code)
    if low is not None and high is not None and low > high:
        fail(f"[{section.name}] LowLimit above HighLimit")


def main(path):
    eds = configparser.ConfigParser(interpolation=None, strict=True)
    eds.optionxform = str  # keys keep their case
    with open(path, encoding="utf-8") as f:
        eds.read_file(f)
    for name in ("FileInfo", "DeviceInfo", "DummyUsage", "Comments", "MandatoryObjects", "OptionalObjects",
                 "ManufacturerObjects"):
        if not eds.has_section(name):
            fail(f"no [{name}]")
    comments = eds["Comments"]
    if number(comments["Lines"]) != len([k for k in comments if re.fullmatch(r"Line\d+", k)]):
        fail("[Comments] Lines does not match its lines")

    listed = {}
    for name, first, last in (("MandatoryObjects", 0x1000, 0x1FFF), ("OptionalObjects", 0x1000, 0xFFFF),
                              ("ManufacturerObjects", 0x2000, 0x5FFF)):
        part = eds[name]
        keys = [k for k in part if k != "SupportedObjects"]
        if number(part["SupportedObjects"]) != len(keys):
            fail(f"[{name}] SupportedObjects={part['SupportedObjects']} but {len(keys)} entries")
        if sorted(number(k) for k in keys) != list(range(1, len(keys) + 1)):
            fail(f"[{name}] entries are not numbered 1..{len(keys)}")
        for k in keys:
            index = number(part[k])
            if not first <= index <= last:
                fail(f"[{name}] lists 0x{index:04X} outside its range")
            if index in listed:
                fail(f"0x{index:04X} is listed twice")
            listed[index] = name
            if not eds.has_section(f"{index:04X}"):
                fail(f"[{name}] lists 0x{index:04X} without a section")

    objects = [s for s in eds.sections() if re.fullmatch(r"[0-9A-F]{4}", s)]
    subs = [s for s in eds.sections() if re.fullmatch(r"[0-9A-F]{4}sub[0-9A-F]+", s)]
    for s in objects:
        if number("0x" + s) not in listed:
            fail(f"[{s}] is not listed")
        section = eds[s]
        kind = number(section.get("ObjectType", "0"))
        mine = sorted(number("0x" + t[7:]) for t in subs if t.startswith(s + "sub"))
        if kind == 0x7:
            if mine:
                fail(f"[{s}] VAR with sub-indexes")
            check_entry(section)
        elif kind in (0x8, 0x9):
            if number(section.get("SubNumber", "-1")) != len(mine):
                fail(f"[{s}] SubNumber={section.get('SubNumber')} but {len(mine)} sub-sections")
            if not mine or mine[0] != 0:
                fail(f"[{s}] has no sub-index 0")
                continue
            sub0 = eds[f"{s}sub0"]
            if number(sub0.get("DataType", "0")) != 0x0005:
                fail(f"[{s}sub0] is not UNSIGNED8")
            if number(sub0.get("DefaultValue", "-1")) != mine[-1]:
                fail(f"[{s}sub0] DefaultValue={sub0.get('DefaultValue')} but the highest sub-index is {mine[-1]}")
            for n in mine:
                check_entry(eds[f"{s}sub{n:X}"])
            if kind == 0x8 and len({eds[f"{s}sub{n:X}"]["DataType"] for n in mine[1:]}) > 1:
                fail(f"[{s}] ARRAY of different types")
        else:
            fail(f"[{s}] ObjectType {section.get('ObjectType')}")
    for t in subs:
        if t[:4] not in objects:
            fail(f"[{t}] without its object")

    info = eds["DeviceInfo"]
    for key, first in (("NrOfRXPDO", 0x1600), ("NrOfTXPDO", 0x1A00)):
        count = len([s for s in objects if first <= number("0x" + s) <= first + 0x1FF])
        if number(info[key]) != count:
            fail(f"[DeviceInfo] {key}={info[key]} but {count} mapping objects")
    for p in problems:
        print(p)
    print(f"objects {len(objects)}")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1]))
