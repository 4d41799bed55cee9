#include <vexa/TQXslTransformer.h>

#define WHAT "@(#)"
#define RULE_OF_70 "----------------------------------------------------------------------"
#define PRODUCT "VEXA XSL Transformer"
#define MAKER "NRB"
#define LIBRARY "VEXA_XSLTransformer"
#define RESTRICTED_RIGHTS                                                                          \
    "Restricted rights: government users may use, copy and disclose this software only as far as " \
    "their contract with " MAKER " allows.\n"

// The last row has a space before the hyphens and one hyphen less: both rows have the same length.
const char* const nrbVersionInfo[9] = {
    WHAT RULE_OF_70 "--\n",
    WHAT " " PRODUCT,
    WHAT " " PRODUCT " v" VEXA_PRODUCT_VERSION,
    WHAT " " MAKER " " LIBRARY " " VEXA_BUILD_NUMBER,
    WHAT " " LIBRARY,
    WHAT " Copyright (C) 2026 " MAKER ". All rights reserved.\n",
    WHAT " " RESTRICTED_RIGHTS,
    WHAT " Supplied under license and not for resale. " RESTRICTED_RIGHTS,
    WHAT " " RULE_OF_70 "-\n",
};
