# Stylesheets are written against this URI, so a mistyped one must not get as far as a build.

set(HOST "[A-Za-z0-9][A-Za-z0-9.-]*(:[0-9]+)?")
set(PATH_CHARACTER "[A-Za-z0-9._~:@!$&'()*+,;=-]|%[0-9A-Fa-f][0-9A-Fa-f]")
if(NOT VEXA_XSL_EXTENSION_NAMESPACE MATCHES "^http://${HOST}(/(${PATH_CHARACTER})*)*/wol$")
  message(
    FATAL_ERROR "VEXA_XSL_EXTENSION_NAMESPACE is \"${VEXA_XSL_EXTENSION_NAMESPACE}\": it must be an "
                "absolute http URI whose path ends in /wol")
endif()
