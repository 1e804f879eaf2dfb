"""Finds places in C++ sources where one small change makes a fault that compiles."""

import dataclasses
import functools
import json
import os
import re
import shlex
import subprocess

from clang.cindex import Config, CursorKind, Index, TypeKind

Config.set_library_file("/usr/lib/llvm-19/lib/libclang-19.so.1")


@dataclasses.dataclass(frozen=True)
class Fault:
    file: str  # relative to the root
    line: int
    last_line: int
    start: int  # bytes of the file that are replaced
    end: int
    text: str
    kind: str

    def apply(self, source):
        return source[:self.start] + self.text.encode() + source[self.end:]


TURNED = {
    "<": ["<=", ">="], "<=": ["<", ">"], ">": [">=", "<="], ">=": [">", "<"], "==": ["!="], "!=": ["=="],
    "&&": ["||"], "||": ["&&"], "+": ["-"], "-": ["+"], "<<": [">>"], ">>": ["<<"], "+=": ["-="], "-=": ["+="],
}
INTEGERS = {
    TypeKind.CHAR_S, TypeKind.SCHAR, TypeKind.UCHAR, TypeKind.SHORT, TypeKind.USHORT, TypeKind.INT, TypeKind.UINT,
    TypeKind.LONG, TypeKind.ULONG, TypeKind.LONGLONG, TypeKind.ULONGLONG,
}
STATEMENTS = {
    CursorKind.CALL_EXPR, CursorKind.BINARY_OPERATOR, CursorKind.COMPOUND_ASSIGNMENT_OPERATOR,
    CursorKind.UNARY_OPERATOR, CursorKind.UNEXPOSED_EXPR,
}
# Calls whose two arguments may change places.
COMMUTATIVE = re.compile(r"_mm\d*_(and|or|xor|add|max|min|cmpeq)_|operator[=!]=")
CONDITIONS = {CursorKind.IF_STMT, CursorKind.WHILE_STMT, CursorKind.CONDITIONAL_OPERATOR}


@functools.cache
def real_path(name):
    return os.path.realpath(name)


class Finder:
    """The faults of one source file or header."""

    def __init__(self, root, file):
        self.path = os.path.join(root, file)
        self.file = file
        with open(self.path, "rb") as stream:
            self.bytes = stream.read()
        self.faults = set()

    def text(self, cursor):
        return self.bytes[cursor.extent.start.offset:cursor.extent.end.offset].decode()

    def add(self, kind, start, end, text):
        line = self.bytes.count(b"\n", 0, start) + 1
        last_line = line + self.bytes.count(b"\n", start, end)
        self.faults.add(Fault(self.file, line, last_line, start, end, text, kind))

    def replace(self, kind, cursor, text):
        self.add(kind, cursor.extent.start.offset, cursor.extent.end.offset, text)

    def is_here(self, cursor):
        place = cursor.location.file
        return place is not None and real_path(place.name) == self.path

    def walk(self, cursor):
        children = list(cursor.get_children())
        if cursor.kind == CursorKind.TRANSLATION_UNIT:
            children = [child for child in children if self.is_here(child)]
        elif cursor.kind == CursorKind.STATIC_ASSERT:
            return
        elif self.is_here(cursor) and cursor.extent.end.offset > cursor.extent.start.offset:
            self.visit(cursor, children)
        for child in children:
            self.walk(child)

    def visit(self, cursor, children):
        if cursor.kind in (CursorKind.BINARY_OPERATOR, CursorKind.COMPOUND_ASSIGNMENT_OPERATOR):
            self.turn_operator(cursor, children)
        elif cursor.kind == CursorKind.INTEGER_LITERAL:
            self.shift_constant(cursor)
        elif cursor.kind in CONDITIONS and children and children[0].kind.is_expression():
            self.change_condition(cursor, children[0])
        elif cursor.kind == CursorKind.RETURN_STMT and children:
            self.replace_result(children[0])
        elif cursor.kind == CursorKind.COMPOUND_STMT:
            for child in children:
                if child.kind in STATEMENTS:
                    self.replace("statement dropped", child, "")
        if cursor.kind == CursorKind.CALL_EXPR and not COMMUTATIVE.match(cursor.spelling):
            self.swap_arguments(list(cursor.get_arguments()))

    def turn_operator(self, cursor, children):
        if len(children) != 2:
            return
        start = children[0].extent.end.offset
        gap = self.bytes[start:children[1].extent.start.offset].decode()
        operator = gap.strip()
        at = start + gap.find(operator)
        for other in TURNED.get(operator, []):
            self.add("operator turned", at, at + len(operator), other)
        if operator == "|":
            for child in children:
                self.replace("flag cleared", cursor, self.text(child))

    def shift_constant(self, cursor):
        match = re.fullmatch(r"(0[xX][0-9A-Fa-f]+|[0-9]+)([uUlL]*)", self.text(cursor))
        if not match:
            return
        value = int(match[1], 0) if match[1].lower().startswith("0x") else int(match[1])
        for other in (value + 1, value - 1):
            if other >= 0:
                self.replace("constant off by one", cursor, f"{other}{match[2]}")

    def change_condition(self, cursor, condition):
        text = self.text(condition)
        self.replace("condition negated", condition, f"!({text})")
        if cursor.kind != CursorKind.WHILE_STMT:
            self.replace("condition dropped", condition, "true")
        self.replace("condition dropped", condition, "false")

    def replace_result(self, result):
        kind = result.type.get_canonical().kind
        text = self.text(result)
        if kind == TypeKind.BOOL:
            self.replace("result replaced", result, f"!({text})")
        elif kind in INTEGERS:
            self.replace("result replaced", result, f"({text}) + 1")
        elif text != "{}":
            self.replace("result replaced", result, "{}")

    def swap_arguments(self, arguments):
        for one, other in zip(arguments, arguments[1:]):
            if one is None or other is None or one.extent.end.offset > other.extent.start.offset:
                continue
            if one.type.get_canonical() != other.type.get_canonical() or self.text(one) == self.text(other):
                continue
            between = self.bytes[one.extent.end.offset:other.extent.start.offset].decode()
            self.add("arguments swapped", one.extent.start.offset, other.extent.end.offset,
                     self.text(other) + between + self.text(one))


def compiler_includes():
    """GCC's own folders, which clang does not know."""
    listing = subprocess.run(["x86_64-w64-mingw32-g++", "-xc++", "-E", "-v", "/dev/null"], capture_output=True,
                             text=True, check=True).stderr
    folders = listing.split("search starts here:")[-1].split("End of search")[0].split()
    return [flag for folder in folders if "/include-fixed" not in folder and not folder.endswith("/12-posix/include")
            for flag in ("-isystem", os.path.realpath(folder))]


def find_faults(root, build, folders):
    """All faults in the sources below the folders, and in the private headers that they include."""
    extra = ["--target=x86_64-w64-windows-gnu", "-nostdinc++", "-w"] + compiler_includes()
    found = set()
    with open(os.path.join(build, "compile_commands.json"), encoding="utf-8") as stream:
        commands = json.load(stream)
    for command in commands:
        source = os.path.relpath(command["file"], root)
        if not source.endswith(".cpp") or os.path.dirname(source) not in folders:
            continue
        words = shlex.split(command["command"])[1:]
        flags = [word for word in words if re.match(r"-(I|D|std=|m|isystem)", word)]
        unit = Index.create().parse(command["file"], args=flags + extra)
        headers = {os.path.relpath(include.include.name, root) for include in unit.get_includes()}
        for file in {source} | {header for header in headers if os.path.dirname(header) in folders}:
            finder = Finder(root, file)
            finder.walk(unit.cursor)
            found |= finder.faults
    return sorted(found, key=lambda fault: (fault.file, fault.start, fault.end, fault.text))
