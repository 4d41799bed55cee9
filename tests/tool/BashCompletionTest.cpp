#include "BashCompletion.h"

TEST_F(BashCompletionTest, CompletesCommands) {
    expectCompleted({
        {"vexa-xslt tr", "<transform>"},
        {"vexa-xslt c", "<chain>"},
        {"vexa-xslt none", "<none>"},
    });
}

TEST_F(BashCompletionTest, CompletesTheOptionsOfEachCommand) {
    expectCompleted({
        {"vexa-xslt transform --pa", "<transform><--param>"},
        {"vexa-xslt chain a b --out", "<chain><a><b><--output>"},
        {"vexa-xslt xpath --out", "<xpath><--out>"},
        {"vexa-xslt --v", "<--version>"},
    });
}

TEST_F(BashCompletionTest, PrefersStylesheetsWhereOneBelongs) {
    shell("mkdir folder; touch more.xslt other.txt; touch folder/in.xsl; mkdir empty; "
          "touch empty/a.txt");
    expectCompleted({
        {"vexa-xslt transform ", "<transform><empty><folder><more.xslt><ok.xsl>"},
        {"vexa-xslt transform o", "<transform><ok.xsl>"},
        {"vexa-xslt transform ot", "<transform><other.txt>"},
        {"vexa-xslt transform folder/", "<transform><folder/in.xsl>"},
        {"vexa-xslt transform empty/", "<transform><empty/a.txt>"},
        {"vexa-xslt transform --quiet -o x -p a=b m",
         "<transform><--quiet><-o><x><-p><a=b><more.xslt>"},
        {"vexa-xslt chain ok.xml o", "<chain><ok.xml><ok.xsl>"},
        {"vexa-xslt chain - a b c o", "<chain><-><a><b><c><ok.xsl>"},
    });
}

TEST_F(BashCompletionTest, TakesAnyFileWhereOneBelongs) {
    shell("touch other.txt ./-x.xml");
    expectCompleted({
        {"vexa-xslt transform a.xsl o", "<transform><a.xsl><ok.xml><ok.xsl><other.txt>"},
        {"vexa-xslt transform a.xsl -- o", "<transform><a.xsl><--><ok.xml><ok.xsl><other.txt>"},
        {"vexa-xslt chain ot", "<chain><other.txt>"},
        {"vexa-xslt xpath 1 ot", "<xpath><1><other.txt>"},
        {"vexa-xslt transform -o ot", "<transform><-o><other.txt>"},
        {"vexa-xslt transform --output=ot", "<transform><--output=other.txt>"},
        {"vexa-xslt transform -p a= ok.xsl o",
         "<transform><-p><a=><ok.xsl><ok.xml><ok.xsl><other.txt>"},
        {"vexa-xslt transform a.xsl -- -", "<transform><a.xsl><--><-x.xml>"},
    });
}

TEST_F(BashCompletionTest, ProposesNothingWhereItKnowsNothing) {
    expectCompleted({
        {"vexa-xslt transform -p ", "<transform><-p>"},
        {"vexa-xslt transform -p o", "<transform><-p><o>"},
        {"vexa-xslt transform -p a=o", "<transform><-p><a=o>"},
        {"vexa-xslt transform --param=o", "<transform><--param=o>"},
        {"vexa-xslt xpath o", "<xpath><o>"},
        {"vexa-xslt transform a b o", "<transform><a><b><o>"},
        {"vexa-xslt nonsense o", "<nonsense><o>"},
    });
}

TEST_F(BashCompletionTest, CompletesNamesThatNeedQuotes) {
    shell("touch 'my sheet.xsl' \"it's.xml\" c:d.xsl 'back\\slash.xsl'; "
          "mkdir 'a folder'; touch 'a folder/in.xsl'");
    expectCompleted({
        {"vexa-xslt transform my", "<transform><my sheet.xsl>"},
        {"vexa-xslt transform my\\ ", "<transform><my sheet.xsl>"},
        {"vexa-xslt transform \"my ", "<transform><my sheet.xsl>"},
        {"vexa-xslt transform 'my ", "<transform><my sheet.xsl>"},
        {"vexa-xslt transform a\\ folder/", "<transform><a folder/in.xsl>"},
        {"vexa-xslt chain it", "<chain><it's.xml>"},
        {"vexa-xslt chain it\\'", "<chain><it's.xml>"},
        {"vexa-xslt chain \"it'", "<chain><it's.xml>"},
        {"vexa-xslt transform c\\:", "<transform><c:d.xsl>"},
        {"vexa-xslt transform \"c:", "<transform><c:d.xsl>"},
        {"vexa-xslt transform back\\\\", "<transform><back\\slash.xsl>"},
        {"vexa-xslt transform c:", "<transform><c:d.xsl>"},
        {"vexa-xslt transform -o my", "<transform><-o><my sheet.xsl>"},
    });
}
