# Stylesheets are written against this URI, so a mistyped one must not get as far as a build.

if(NOT VEXA_XSL_EXTENSION_NAMESPACE MATCHES "^http://[A-Za-z0-9.:@%_~-]+(/[A-Za-z0-9._~:@!$&'()*+,;=%-]*)*/wol$")
  message(
    FATAL_ERROR "VEXA_XSL_EXTENSION_NAMESPACE is \"${VEXA_XSL_EXTENSION_NAMESPACE}\": it must be an "
                "absolute http URI whose path ends in /wol")
endif()
