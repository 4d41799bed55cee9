# Typical uses of vexa-xslt. Run it in a copy of the folder samples.
set -euo pipefail

# [transform]
vexa-xslt transform report.xsl orders.xml -o report.html          # written atomically
vexa-xslt transform report.xsl orders.xml -p title=Books > b.html # a parameter; standard output
cat orders.xml | vexa-xslt transform open-only.xsl > open.xml     # the source from a pipe
# [/transform]

# [chain]
vexa-xslt chain orders.xml open-only.xsl line-amounts.xsl totals.xsl -p since=2025-12-29
# [/chain]

# [xpath]
vexa-xslt xpath 'count(//cat:product)' orders-small.xml
vexa-xslt xpath '//cat:product[@price > 28]/@id' orders-small.xml
# [/xpath]

# [batch]
vexa-xslt batch report.xsl orders.xml orders-small.xml -d pages --suffix .html --quiet
# [/batch]

# [records]
vexa-xslt records order-line.xsl orders-small.xml -e order -o orders.csv
vexa-xslt records open-only.xsl orders.xml -e order --wrap orders -o open-orders.xml
# [/records]

# [test]
vexa-xslt test totals.tests.xml
vexa-xslt test . --junit results.xml    # all files *.tests.xml, in folders below, too
# [/test]

# [find]
find . -name 'orders*.xml' -print0 |
    vexa-xslt batch report.xsl --files-from - -0 -d found --quiet
# [/find]

# [xargs]
find . -name 'orders*.xml' -print0 | xargs -0 vexa-xslt batch report.xsl -d handed --quiet
# [/xargs]
