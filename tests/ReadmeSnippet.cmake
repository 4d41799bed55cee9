# Fails unless the README shows the example program word for word: -D README=... -D EXAMPLE=...
file(READ "${README}" readme)
file(READ "${EXAMPLE}" example)
string(FIND "${readme}" "```cpp\n${example}```" position)
if(position EQUAL -1)
  message(FATAL_ERROR "${README} does not show ${EXAMPLE} as it is")
endif()
