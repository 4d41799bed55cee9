/**
 * @file
 * The interface of libVEXA_XSLT: compile once, run from any thread.
 *
 *     const auto report = vexa::Stylesheet::compile(vexa::Input::file("report.xsl"));
 *     vexa::Transformation run(report);
 *     run.parameter("title", "May's \"orders\"");
 *     run.to(vexa::Input::file("orders.xml"), vexa::Output::file("report.html"));
 *
 * All text is UTF-8. Failures are exceptions of type vexa::Error. A host initializes nothing.
 */
#pragma once

#include <vexa/xslt/Document.h>
#include <vexa/xslt/Error.h>
#include <vexa/xslt/Input.h>
#include <vexa/xslt/Options.h>
#include <vexa/xslt/Output.h>
#include <vexa/xslt/Records.h>
#include <vexa/xslt/Stylesheet.h>
#include <vexa/xslt/Tracer.h>
#include <vexa/xslt/Transformation.h>
#include <vexa/xslt/Value.h>
#include <vexa/xslt/XPath.h>

/** All names of this interface. */
namespace vexa {}
