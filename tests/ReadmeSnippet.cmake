# Fails unless the README shows an example program word for word, or its part between two lines
# "// [shown in the README]": -D README=... -D EXAMPLE=...
cmake_minimum_required(VERSION 3.25)

set(MARK "    // [shown in the README]\n")
file(READ "${README}" readme)
file(READ "${EXAMPLE}" shown)
string(FIND "${shown}" "${MARK}" begin)
string(FIND "${shown}" "${MARK}" end REVERSE)
if(NOT begin EQUAL -1)
  string(LENGTH "${MARK}" mark_length)
  math(EXPR begin "${begin} + ${mark_length}")
  math(EXPR length "${end} - ${begin}")
  string(SUBSTRING "${shown}" ${begin} ${length} shown)
endif()
string(FIND "${readme}" "```cpp\n${shown}```" position)
if(position EQUAL -1)
  message(FATAL_ERROR "${README} does not show this of ${EXAMPLE}:\n${shown}")
endif()
