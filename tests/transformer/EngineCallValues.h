/**
 * @file
 * What EngineCalls.cpp cannot find out itself, as it may not include the engine's headers.
 */
#pragma once

#include <string>

#include <xalanc/XalanDOM/XalanDOMDefinitions.hpp>

namespace XALAN_CPP_NAMESPACE {
class XSLTInputSource;
class XalanDocumentBuilder;
} // namespace XALAN_CPP_NAMESPACE

/** An engine string as UTF-8. */
std::string narrow(const xalanc::XalanDOMChar* text);

const void* nodeOf(const xalanc::XSLTInputSource& source);

const void* documentOf(xalanc::XalanDocumentBuilder* builder);
