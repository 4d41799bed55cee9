# It stands in the version record right after the product version and a hyphen: without it, the hyphen would
# be left alone, and it is passed on as part of a string in C++.

if(NOT VEXA_BUILD_QUALIFIER MATCHES "^[A-Za-z0-9][A-Za-z0-9._+~-]*$")
  message(
    FATAL_ERROR "VEXA_BUILD_QUALIFIER is \"${VEXA_BUILD_QUALIFIER}\": it must be a word of letters, digits "
                "and the characters . _ + ~ -")
endif()
