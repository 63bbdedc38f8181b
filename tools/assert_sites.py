#!/usr/bin/env python3
"""Generates the table of keel's assertion sites in docs/host-guide.md from the
code, so that the table a host reads cannot drift from what the library
reports.

Usage: tools/assert_sites.py [--check] [--self-test]

Run from anywhere; paths are taken from the repository the script lives in.

Without options the script rewrites the table between the lines
`<!-- assert-sites:begin -->` and `<!-- assert-sites:end -->` of the guide.
`--check` changes nothing: it exits 1 and prints a diff when the guide's table
is not the one the code gives.  `--self-test` runs the scanner over small
texts with sites it must refuse, and exits 1 if any slips through.

A site is a use of one of the reporting forms of ssm/internal/SSM_Check.h and
inc/SSM_Assert.h in sys/, scc/, ssm/, sfm/, ui/ or inc/ (headers included):

    SSM_CHECK(cond, file, line)
    SSM_CHECK_MSG(cond, message, file, line)
    SSM_CHECK_ID(cond, message, file, line, id)
    SSM_CheckFailed(message, file, line[, id])       under an `if`
    SSM_AssertFailed(message, file, line, type, id)  under an `if`

The file text and the line are what a host's records are keyed on, so they
must be literals.  A site inside a helper whose file or line is one of the
helper's parameters is tabled once per call of the helper, with the literal
that call passes (the calling function is shown); a call that passes a
parameter of its own is followed the same way, a few levels deep.
Anything else that is not a literal (a variable, a macro, an expression) is an
error: the script names the place and exits 2 instead of leaving it out.  The
condition of a direct call is read from the `if` that guards it (negated, so
that the column always shows what must hold), from a `switch`'s `default:`
(the cases listed), or from an `if (...) continue;` just before it; a direct
call under no such guard is an error too.

Rows are sorted by file text, then line.  The forwarding call inside the
reporting helpers themselves (SSM_CheckFailed's body) is not a site.
"""
import difflib
import os
import re
import sys

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
GUIDE = os.path.join("docs", "host-guide.md")
SCAN_DIRS = ("sys", "scc", "ssm", "sfm", "ui", "inc")
EXTENSIONS = (".h", ".hpp", ".cpp", ".cc", ".inc")
BEGIN = "<!-- assert-sites:begin -->"
END = "<!-- assert-sites:end -->"

# The reporting forms and the argument index of each part; -1 when absent.
# "id" may be left out of SSM_CheckFailed (it defaults to 0).
FORMS = {
    "SSM_CHECK": dict(cond=0, message=-1, file=1, line=2, id=-1, type=-1),
    "SSM_CHECK_MSG": dict(cond=0, message=1, file=2, line=3, id=-1, type=-1),
    "SSM_CHECK_ID": dict(cond=0, message=1, file=2, line=3, id=4, type=-1),
    "SSM_CheckFailed": dict(cond=-1, message=0, file=1, line=2, id=3, type=-1),
    "SSM_AssertFailed": dict(cond=-1, message=0, file=1, line=2, id=4, type=3),
}
# What every site of the SSM_CHECK family and SSM_CheckFailed reports.
DEFAULT_TYPE = "SSM_FailureFatal"

KEYWORDS_NOT_TYPES = {"return", "else", "do", "case", "throw", "co_return"}
CONTROL = {"if", "for", "while", "switch", "catch", "return", "sizeof", "decltype"}
BINARY = {"&&", "||", "==", "!=", "<", ">", "<=", ">=", "+", "-", "*", "/", "%", "&", "|", "^",
          "?", ":", "=", "<<", ">>", ","}

TOKEN = re.compile(
    r"""
    (?P<space>\s+)
  | (?P<comment>//[^\n]*|/\*.*?\*/)
  | (?P<raw>\b(?:u8|u|U|L)?R"(?P<delim>[^()\\\s]{0,16})\(.*?\)(?P=delim)")
  | (?P<string>(?:u8|u|U|L)?"(?:[^"\\\n]|\\.)*")
  | (?P<char>(?:u8|u|U|L)?'(?:[^'\\\n]|\\.)+')
  | (?P<ident>[A-Za-z_]\w*)
  | (?P<number>\.?\d(?:[\w.]|'(?=\w)|(?<=[eEpP])[+-])*)
  | (?P<punct>::|->\*?|\.\.\.|<<=|>>=|&&|\|\||==|!=|<=|>=|<<|>>|\+\+|--|[-+*/%&|^!=<>]=|\#\#|.)
    """,
    re.VERBOSE | re.DOTALL,
)


class ScanError(Exception):
    pass


class Token:
    __slots__ = ("kind", "text", "start", "end", "line")

    def __init__(self, kind, text, start, end, line):
        self.kind, self.text, self.start, self.end, self.line = kind, text, start, end, line

    def __repr__(self):
        return "%s:%r" % (self.kind, self.text)


def blank_preprocessor(text):
    """Replaces preprocessor directives (with their continuation lines) by
    blanks, keeping every newline so that line numbers stay right."""
    out, lines, in_directive = [], text.split("\n"), False
    for line in lines:
        if in_directive or line.lstrip().startswith("#"):
            in_directive = line.rstrip().endswith("\\")
            out.append(" " * len(line))
        else:
            out.append(line)
    return "\n".join(out)


def tokenize(text):
    text = blank_preprocessor(text)
    tokens, pos, line = [], 0, 1
    while pos < len(text):
        m = TOKEN.match(text, pos)
        kind = m.lastgroup
        if kind == "delim":
            kind = "raw"
        value = m.group(0)
        if kind not in ("space", "comment"):
            if kind == "raw":
                kind = "string"
            tokens.append(Token(kind, value, m.start(), m.end(), line))
        line += value.count("\n")
        pos = m.end()
    return tokens


class Scope:
    """A braced scope: its kind ("namespace", "class", "function" or
    "block"), a class's or function's qualified name, a function's parameter
    names, the token indices of its braces, its header (the tokens from
    `first` up to the "{") and the scope around it."""

    __slots__ = ("kind", "name", "params", "open", "close", "first", "header", "parent")

    def __init__(self, kind, name, params, tokens, first, open_index, parent):
        self.kind, self.name, self.params = kind, name, params
        self.open, self.close = open_index, None
        self.first, self.header = first, tokens[first:open_index]
        self.parent = parent


def matching(tokens, i, opening, closing):
    """Index of the token closing the bracket at i."""
    depth = 0
    for j in range(i, len(tokens)):
        if tokens[j].text == opening:
            depth += 1
        elif tokens[j].text == closing:
            depth -= 1
            if depth == 0:
                return j
    raise ScanError("unbalanced %r at line %d" % (opening, tokens[i].line))


def matching_back(tokens, i, opening, closing):
    """Index of the token opening the bracket that closes at i."""
    depth = 0
    for j in range(i, -1, -1):
        if tokens[j].text == closing:
            depth += 1
        elif tokens[j].text == opening:
            depth -= 1
            if depth == 0:
                return j
    raise ScanError("unbalanced %r at line %d" % (closing, tokens[i].line))


def split_args(tokens, open_index):
    """The argument token ranges [(first, last_exclusive)] of the call whose
    "(" is at open_index, and the index of its ")"."""
    close = matching(tokens, open_index, "(", ")")
    args, start, depth = [], open_index + 1, 0
    for j in range(open_index + 1, close):
        t = tokens[j].text
        if t in ("(", "[", "{"):
            depth += 1
        elif t in (")", "]", "}"):
            depth -= 1
        elif t == "," and depth == 0:
            args.append((start, j))
            start = j + 1
    if start < close:
        args.append((start, close))
    return args, close


def strip_template(header):
    """Drops leading `template <...>` clauses from a declaration header."""
    while len(header) > 1 and header[0].text == "template" and header[1].text == "<":
        depth, j = 0, 1
        while j < len(header):
            if header[j].text == "<":
                depth += 1
            elif header[j].text == ">":
                depth -= 1
            elif header[j].text == ">>":
                depth -= 2
            if depth <= 0:
                break
            j += 1
        header = header[j + 1 :]
    return header


def function_of(header, classes):
    """(qualified name, parameter names) of a function definition header, or
    None when the header declares no function."""
    header = strip_template(header)
    depth = 0
    for j, t in enumerate(header):
        if t.text == "=" and depth == 0 and (j == 0 or header[j - 1].text != "operator"):
            return None
        if t.text == "(" and depth == 0:
            k = j - 1
            if k < 0:
                return None
            if header[k].kind == "ident" and header[k].text not in CONTROL:
                name_start = k
            else:
                # operator++, operator[], operator SYS_StringBase ...
                name_start = k
                while name_start >= 0 and header[name_start].text != "operator":
                    name_start -= 1
                if name_start < 0:
                    return None
            if name_start >= 1 and header[name_start - 1].text == "~":
                name_start -= 1
            while (name_start >= 2 and header[name_start - 1].text == "::"
                   and header[name_start - 2].kind == "ident"):
                name_start -= 2
            name = ""
            for u in header[name_start:j]:
                if name and name[-1].isalnum() and u.kind == "ident":
                    name += " "
                name += u.text
            params = []
            for first, last in split_args(header, j)[0]:
                end = next((x for x in range(first, last) if header[x].text == "="), last)
                idents = [header[x].text for x in range(first, end) if header[x].kind == "ident"]
                params.append(idents[-1] if idents else "")
            return "::".join(classes + [name]), params
        if t.text in ("(", "[", "{"):
            depth += 1
        elif t.text in (")", "]", "}"):
            depth -= 1
    return None


def class_of(header):
    """The name of a class, struct or union a header opens (qualified when it
    is defined outside its enclosing class), "" for an anonymous one, or None
    when it opens none."""
    header = strip_template(header)
    for j, t in enumerate(header):
        if t.text in ("(", "enum"):
            return None
        if t.text not in ("class", "struct", "union"):
            continue
        rest = [u for u in header[j + 1 :] if u.text not in ("KEEL_API", "final", "alignas")]
        name, depth = [], 0
        for u in rest:
            if u.text == "<":
                depth += 1
            elif u.text == ">":
                depth -= 1
            elif depth == 0 and u.kind == "ident":
                name.append(u.text)
            elif depth == 0 and u.text != "::":
                break
        return "::".join(name)
    return None


class Unit:
    """One scanned file: its tokens, its scopes and its calls."""

    def __init__(self, path, text):
        self.path = path
        self.text = text
        self.tokens = tokenize(text)
        self.scope_of = []  # for each token index, the innermost Scope or None
        self._build_scopes()

    def _build_scopes(self):
        tokens, stack, boundary, parens = self.tokens, [], -1, 0
        self.scope_of = [None] * len(tokens)
        for i, t in enumerate(tokens):
            self.scope_of[i] = stack[-1] if stack else None
            if t.text in ("(", "["):
                parens += 1
            elif t.text in (")", "]"):
                parens -= 1
            elif parens > 0:
                # Braces inside parentheses are initialisers and lambdas of
                # an expression, not scopes of their own.
                continue
            elif t.text == "{":
                header = tokens[boundary + 1 : i]
                parent = stack[-1] if stack else None
                classes = [s.name for s in stack if s.kind == "class" and s.name]
                kind, name, params = "block", "", []
                if any(s.kind == "function" for s in stack):
                    pass
                elif header and header[0].text in ("namespace", "extern"):
                    kind = "namespace"
                elif class_of(header) is not None:
                    kind, name = "class", class_of(header)
                elif function_of(header, classes):
                    kind = "function"
                    name, params = function_of(header, classes)
                stack.append(Scope(kind, name, params, tokens, boundary + 1, i, parent))
                boundary = i
            elif t.text == "}":
                if stack:
                    stack.pop().close = i
                boundary = i
            elif t.text == ";":
                boundary = i
            elif (t.text == ":" and i > 0
                  and tokens[i - 1].text in ("public", "private", "protected")):
                boundary = i

    def function_at(self, i):
        """The function whose body holds token i, or None."""
        s = self.scope_of[i]
        while s is not None and s.kind != "function":
            s = s.parent
        return s

    def source(self, first, last):
        """The code of tokens [first, last) with its blanks folded."""
        if first >= last:
            return ""
        text = self.text[self.tokens[first].start : self.tokens[last - 1].end]
        text = re.sub(r"//[^\n]*|/\*.*?\*/", " ", text, flags=re.DOTALL)
        return re.sub(r"\s+", " ", text).strip()

    def where(self, i):
        return "%s:%d" % (self.path, self.tokens[i].line)

    def is_call(self, i):
        """Whether the identifier at i starts a call (not a declaration or a
        definition)."""
        tokens = self.tokens
        if i + 1 >= len(tokens) or tokens[i + 1].text != "(":
            return False
        k = i - 1
        while k >= 1 and tokens[k].text == "::" and tokens[k - 1].kind == "ident":
            k -= 2
        if k < 0:
            return True
        prev = tokens[k]
        if prev.text == "::":
            return True
        # A type before the name: `void f(`, `int* A::f(`, `const T& f(`.
        if prev.kind == "ident":
            return prev.text in KEYWORDS_NOT_TYPES
        if prev.text in ("*", "&", "&&", "~") and k >= 1:
            before = tokens[k - 1]
            if before.text == ">" or (before.kind == "ident"
                                      and before.text not in KEYWORDS_NOT_TYPES):
                return False
        return True


def literal_string(unit, first, last):
    """The value of a string literal argument (adjacent literals joined), or
    None when the argument is anything else."""
    toks = unit.tokens[first:last]
    if not toks or any(t.kind != "string" for t in toks):
        return None
    value = ""
    for t in toks:
        body = t.text[t.text.index('"') + 1 : t.text.rindex('"')]
        value += body
    return value


def literal_int(unit, first, last):
    toks = unit.tokens[first:last]
    sign = 1
    if len(toks) == 2 and toks[0].text == "-":
        sign, toks = -1, toks[1:]
    if len(toks) != 1 or toks[0].kind != "number":
        return None
    m = re.fullmatch(r"(0[xX][0-9a-fA-F']+|\d[\d']*)[uUlL]*", toks[0].text)
    if not m:
        return None
    digits = m.group(1).replace("'", "")
    base = 16 if digits[:2] in ("0x", "0X") else 8 if len(digits) > 1 and digits[0] == "0" else 10
    return sign * int(digits, base)


def negate(unit, first, last):
    """The C++ text of !(tokens[first:last]), simplified where that is safe."""
    toks = unit.tokens[first:last]
    if toks and toks[0].text == "!":
        rest_first = first + 1
        depth, simple = 0, True
        for t in unit.tokens[rest_first:last]:
            if t.text in ("(", "[", "{"):
                depth += 1
            elif t.text in (")", "]", "}"):
                depth -= 1
            elif depth == 0 and t.text in BINARY:
                simple = False
        if simple:
            return unit.source(rest_first, last)
    return "!(%s)" % unit.source(first, last)


def guard_condition(unit, name_index):
    """What must hold for the guarded direct call at name_index not to be
    reached, as C++ text."""
    tokens = unit.tokens
    start = name_index
    # `if (!SSM_AssertFailed(...)) SSM_Throw();`: the statement is the if.
    if (start >= 3 and tokens[start - 1].text == "!" and tokens[start - 2].text == "("
            and tokens[start - 3].text == "if"):
        start -= 3
    before = start - 1
    scope = unit.scope_of[name_index]
    # if (X) CALL(...);
    if before >= 0 and tokens[before].text == ")":
        open_paren = matching_back(tokens, before, "(", ")")
        if open_paren >= 1 and tokens[open_paren - 1].text == "if":
            return negate(unit, open_paren + 1, before)
    # if (Y) continue;  CALL(...);   (or break, or return)
    if before >= 0 and tokens[before].text == ";":
        k = before - 1
        while k >= 0 and tokens[k].text not in (";", "{", "}", ")"):
            k -= 1
        jump = tokens[k + 1].text if k + 1 < before else ""
        if k >= 0 and tokens[k].text == ")" and jump in ("continue", "break", "return"):
            open_paren = matching_back(tokens, k, "(", ")")
            if open_paren >= 1 and tokens[open_paren - 1].text == "if":
                return unit.source(open_paren + 1, k)
    if scope is not None and scope.kind == "block":
        h = scope.header
        # case A: ... CALL(...);  or  default: ... CALL(...);  in switch (E)
        if len(h) >= 4 and h[0].text == "switch" and h[1].text == "(" and h[-1].text == ")":
            expr = unit.source(scope.first + 2, scope.open - 1)
            labels, label = [], None
            for j in range(scope.open + 1, scope.close):
                if tokens[j].text == "case" and unit.scope_of[j] is scope:
                    k = next(x for x in range(j + 1, scope.close) if tokens[x].text == ":")
                    labels.append(unit.source(j + 1, k))
                    if j < start:
                        label = labels[-1]
                elif tokens[j].text == "default" and unit.scope_of[j] is scope and j < start:
                    label = "default"
            if label == "default" and labels:
                return " || ".join("%s == %s" % (expr, case) for case in labels)
            if label is not None and label != "default":
                return "%s != %s" % (expr, label)
        # { ... CALL(...); } under if (X) or else if (X)
        paren = 1 if h and h[0].text == "if" else 2 if h[:2] and [
            u.text for u in h[:2]] == ["else", "if"] else None
        if paren is not None and len(h) > paren + 1 and h[paren].text == "(" \
                and h[-1].text == ")":
            return negate(unit, scope.first + paren + 1, scope.open - 1)
    raise ScanError("%s: cannot tell which condition guards this %s"
                    % (unit.where(name_index), tokens[name_index].text))


class Site:
    """One row of the table."""

    __slots__ = ("file", "line", "function", "condition", "message", "id", "type")

    def __init__(self, **kw):
        for k, v in kw.items():
            setattr(self, k, v)

    def key(self):
        return (self.file, self.line, self.function, self.condition)


def calls_of(units, name):
    """Every call of the function `name` (unqualified) in the scanned units:
    (unit, name index, argument ranges)."""
    simple = name.split("::")[-1]
    for unit in units:
        for i, t in enumerate(unit.tokens):
            if t.kind == "ident" and t.text == simple and unit.is_call(i):
                fn = unit.function_at(i)
                if fn is None:
                    continue
                args, _ = split_args(unit.tokens, i + 1)
                yield unit, i, args


def resolve(units, unit, index, part, first, last, depth=0):
    """The literal values one site argument takes: [(value, unit, index)],
    one per call path.  A parameter of the enclosing function is followed
    into that function's calls."""
    parse = literal_string if part in ("file", "message") else literal_int
    value = parse(unit, first, last)
    if value is not None:
        return [(value, unit, index)]
    toks = unit.tokens[first:last]
    fn = unit.function_at(index)
    if (depth < 4 and len(toks) == 1 and toks[0].kind == "ident" and fn is not None
            and toks[0].text in fn.params):
        position = fn.params.index(toks[0].text)
        found = []
        for call_unit, call_index, args in calls_of(units, fn.name):
            if call_unit is unit and unit.function_at(call_index) is fn:
                continue
            if position >= len(args):
                raise ScanError("%s: the call of %s passes no %s"
                                % (call_unit.where(call_index), fn.name, part))
            a, b = args[position]
            found += resolve(units, call_unit, call_index, part, a, b, depth + 1)
        if not found:
            raise ScanError("%s: the %s of this site is the parameter %r of %s, which "
                            "nothing calls" % (unit.where(index), part, toks[0].text, fn.name))
        return found
    raise ScanError("%s: the %s of this site is not a literal: %s"
                    % (unit.where(index), part, unit.source(first, last) or "(missing)"))


def single(units, unit, index, part, arg, default):
    """The one literal value of a site's message or identifier."""
    if arg is None:
        return default
    values = {value for value, _, _ in resolve(units, unit, index, part, *arg)}
    if len(values) != 1:
        raise ScanError("%s: the %s of this site differs from call to call"
                        % (unit.where(index), part))
    return values.pop()


def scan(units):
    """Every site of the units, sorted by file text, then line."""
    sites = []
    for unit in units:
        tokens = unit.tokens
        for i, t in enumerate(tokens):
            if t.kind != "ident" or t.text not in FORMS or not unit.is_call(i):
                continue
            fn = unit.function_at(i)
            # The reporting helpers forward their own parameters; their
            # callers are the sites.
            if fn is not None and fn.name.split("::")[-1] in FORMS:
                continue
            form = FORMS[t.text]
            args, close = split_args(tokens, i + 1)
            needed = max(v for k, v in form.items() if k != "id") + 1
            if len(args) < needed:
                raise ScanError("%s: %s takes %d arguments here, %d given"
                                % (unit.where(i), t.text, needed, len(args)))

            def arg(part):
                return args[form[part]] if 0 <= form[part] < len(args) else None

            if form["cond"] >= 0:
                condition = unit.source(*arg("cond"))
            else:
                condition = guard_condition(unit, i)
            message = single(units, unit, i, "message", arg("message"), "")
            ident = single(units, unit, i, "id", arg("id"), 0)
            kind = unit.source(*arg("type")) if arg("type") else DEFAULT_TYPE
            if not re.fullmatch(r"SSM_Failure\w+|\d+", kind):
                raise ScanError("%s: the type of this site is not a constant: %s"
                                % (unit.where(i), kind))
            files = resolve(units, unit, i, "file", *arg("file"))
            lines = resolve(units, unit, i, "line", *arg("line"))
            if len(files) > 1 and len(lines) > 1:
                raise ScanError("%s: both the file and the line come from calls"
                                % unit.where(i))
            for (file_text, fu, fi) in files:
                for (line, lu, li) in lines:
                    # The function shown is the one whose call gave the literal.
                    if (lu, li) != (unit, i):
                        via_unit, via_index = lu, li
                    else:
                        via_unit, via_index = fu, fi
                    via_fn = via_unit.function_at(via_index)
                    sites.append(Site(file=file_text, line=line,
                                      function=via_fn.name if via_fn else "",
                                      condition=condition, message=message, id=ident,
                                      type=kind))
    return sorted(sites, key=Site.key)


def code(text):
    """Code in a table cell.  A pipe must be escaped to stay in its cell, and
    only an HTML code span shows the escape as a plain pipe everywhere the
    guide is read (a backtick span would keep the backslash)."""
    if "|" in text:
        return "<code>%s</code>" % text.replace("|", "\\|")
    return "`%s`" % text


def table(sites):
    rows = ["| Source | Line | Function | Condition (must hold) | Message |",
            "|---|---:|---|---|---|"]
    for s in sites:
        message = s.message
        extra = []
        if s.id:
            extra.append("identifier %d" % s.id)
        if s.type != DEFAULT_TYPE:
            extra.append("type `%s`" % s.type)
        message = ("\"%s\"" % message) if message else "—"
        if extra:
            message += " (%s)" % ", ".join(extra)
        rows.append("| %s | %d | %s | %s | %s |" % (
            s.file, s.line, code(s.function), code(s.condition), message.replace("|", "\\|")))
    return rows


def load_units(root):
    units = []
    for top in SCAN_DIRS:
        for folder, dirs, files in os.walk(os.path.join(root, top)):
            dirs.sort()
            for name in sorted(files):
                if not name.endswith(EXTENSIONS):
                    continue
                path = os.path.join(folder, name)
                with open(path, encoding="utf-8", errors="surrogateescape") as f:
                    units.append(Unit(os.path.relpath(path, root), f.read()))
    return units


def replace_block(guide_text, rows):
    lines = guide_text.split("\n")
    try:
        begin = lines.index(BEGIN)
        end = lines.index(END, begin)
    except ValueError:
        raise ScanError("%s has no %s ... %s block" % (GUIDE, BEGIN, END))
    return "\n".join(lines[: begin + 1] + [""] + rows + [""] + lines[end:])


def self_test():
    """Feeds the scanner sites it must refuse or resolve; returns failures."""
    refused = {
        "a variable line": 'void f(int n) { int x = n; SSM_CHECK(x, "t/t", x); }',
        "a macro file": '#define F "t/t"\nvoid f() { SSM_CHECK(1, F, 3); }',
        "an expression line": 'void f() { SSM_CHECK(1, "t/t", 2 + 1); }',
        "an uncalled helper": 'void g(int l) { SSM_CHECK(1, "t/t", l); }',
        "a helper called with a variable":
            'void g(int l) { SSM_CHECK(1, "t/t", l); }\nvoid h(int k) { g(k); }',
        "an unguarded direct call": 'void f() { g(); SSM_CheckFailed("", "t/t", 4); }',
        "a direct call with a variable file":
            'void f(const char* p) { if (!p) SSM_CheckFailed("", p, 4); }',
    }
    failures = []
    for what, text in refused.items():
        try:
            scan([Unit("test.cpp", text)])
            failures.append("%s was tabled instead of refused" % what)
        except ScanError:
            pass
    accepted = (
        'inline void SSM_CheckFailed(const char* m, const char* file, int line, int id = 0) {\n'
        '    if (!SSM_AssertFailed(m, file, line, SSM_FailureFatal, id)) SSM_Throw(); }\n'
        'struct A { int* Ready(int line) { SSM_CHECK(p, "t/a", line); return p; } int* p; };\n'
        'void A_Use(A& a) { a.Ready(12); }\n'
        'void Walk(int n) { for (;;) { if (n > 2) continue; SSM_CheckFailed("m", "t/b", 7, 3); } }\n'
        'int Pick(int c) { switch (c) { case 1: break; default:\n'
        '    if (!SSM_AssertFailed("bad", "t/c", 9, SSM_FailureSoft, 0)) SSM_Throw(); } return 0; }\n'
    )
    try:
        got = [(s.file, s.line, s.function, s.condition, s.message, s.id, s.type)
               for s in scan([Unit("test.cpp", accepted)])]
    except ScanError as e:
        return failures + ["a sound text was refused: %s" % e]
    want = [
        ("t/a", 12, "A_Use", "p", "", 0, DEFAULT_TYPE),
        ("t/b", 7, "Walk", "n > 2", "m", 3, DEFAULT_TYPE),
        ("t/c", 9, "Pick", "c == 1", "bad", 0, "SSM_FailureSoft"),
    ]
    if got != want:
        failures.append("sound sites read as %r, expected %r" % (got, want))
    return failures


def main(argv):
    if "--self-test" in argv:
        failures = self_test()
        for f in failures:
            print("assert_sites self-test: " + f, file=sys.stderr)
        return 1 if failures else 0
    check = "--check" in argv
    unknown = [a for a in argv if a not in ("--check", "--self-test")]
    if unknown:
        print(__doc__.split("\n\n")[1], file=sys.stderr)
        return 2
    try:
        rows = table(scan(load_units(ROOT)))
        path = os.path.join(ROOT, GUIDE)
        with open(path, encoding="utf-8") as f:
            old = f.read()
        new = replace_block(old, rows)
    except ScanError as e:
        print("assert_sites: %s" % e, file=sys.stderr)
        return 2
    if check:
        if old == new:
            return 0
        sys.stdout.writelines(difflib.unified_diff(
            old.splitlines(True), new.splitlines(True), GUIDE, GUIDE + " (from the code)"))
        print("assert_sites: %s is stale; run tools/assert_sites.py" % GUIDE, file=sys.stderr)
        return 1
    if old != new:
        with open(path, "w", encoding="utf-8") as f:
            f.write(new)
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
