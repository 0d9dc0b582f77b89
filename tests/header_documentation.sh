#!/bin/sh
# Holds the public headers to what they promise their readers: every export is declared once and
# nothing else is; the comment right above a function has a line for each parameter, and tells its
# failures; each failure number told has an enumerator, and each enumerator is told somewhere. The
# umbrella includes and lists every header of a family.
# usage: header_documentation.sh LIST UMBRELLA FAMILY_HEADER...
set -eu
list=$1 umbrella=$2
shift 2

status=0
for header in "$@"; do
  if ! grep -qx "#include \"orlune_ptk/${header##*/}\"" "$umbrella"; then
    echo "$umbrella: does not include ${header##*/}"
    status=1
  fi
  if ! grep -qE "^ \*   ${header##*/} +[a-z]" "$umbrella"; then
    echo "$umbrella: does not tell what is in ${header##*/}"
    status=1
  fi
done

awk '
function complain(text) {
  print place text
  bad = 1
}

# The name of a parameter: the last word of its declaration.
function name_of(parameter) {
  sub(/[ \t]+$/, "", parameter)
  sub(/^.*[^A-Za-z0-9_]/, "", parameter)
  return parameter
}

function check_function(declaration,    name, inside, parameters, count, i, parameter) {
  match(declaration, /ZEL_[A-Za-z0-9_]+\(/)
  name = substr(declaration, RSTART, RLENGTH - 1)
  if (declared[name]++) complain(name " is declared twice")
  if (!listed[name]) complain(name " is not in the list of exports")
  if (comment == "") complain(name " has no comment right above it")

  inside = substr(declaration, RSTART + RLENGTH)
  sub(/\);.*$/, "", inside)
  count = inside == "void" ? 0 : split(inside, parameters, ",")
  for (i = 1; i <= count; i++) {
    parameter = name_of(parameters[i])
    if (comment !~ "\n [*] " parameter ": +[A-Za-z0-9\"'"'"'-]")
      complain(name ": no line tells of the parameter " parameter)
  }
  if (index(comment, "\n * Failures: ") == 0) {
    complain(name ": no line tells of its failures")
  } else {
    collect_numbers(name, substr(comment, index(comment, "\n * Failures: ")))
  }
}

function collect_numbers(name, text,    number) {
  while (match(text, /[ (](-[2-9]|-?[0-9][0-9][0-9]+)/)) {
    number = substr(text, RSTART + 1, RLENGTH - 1)
    if (number ~ /^-/ || name == "ZEL_GetImageInfo") {
      sub(/^-/, "", number)
      told[number] = name
    }
    text = substr(text, RSTART + RLENGTH)
  }
}

{ place = FILENAME ":" FNR ": " }
FNR == NR {
  if ($0 ~ /^ZEL_/) listed[$1] = 1
  next
}

# Declarations run over lines, and the comment above one ends on the line before it.
in_declaration || /^[A-Za-z].*[ *]ZEL_[A-Za-z0-9_]+\(/ {
  declaration = in_declaration ? declaration " " $0 : $0
  in_declaration = $0 !~ /;/
  if (!in_declaration) {
    check_function(declaration)
    comment = ""
  }
  next
}
/^\/\*/ { comment = ""; in_comment = 1 }
in_comment {
  comment = comment "\n" $0
  if ($0 ~ /\*\//) in_comment = 0
  next
}
{ comment = "" }
/^ *ZEL_ERR_[A-Z_]+ = -[0-9]+/ {
  sub(/,.*$/, "", $3)
  enumerators[substr($3, 2) + 0] = $1
}

END {
  place = ""
  for (name in listed)
    if (!declared[name]) complain(name " is declared in no header")
  for (number in told)
    if (!(number in enumerators)) complain(told[number] ": no enumerator is -" number)
  for (number in enumerators)
    if (!(number in told)) complain(enumerators[number] " is told of no function")
  exit bad
}' "$list" "$umbrella" "$@" || status=1
exit $status
