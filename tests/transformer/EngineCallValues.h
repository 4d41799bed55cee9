/**
 * @file
 * Helpers of EngineCalls.cpp, which cannot include the headers of the engine.
 */
#pragma once

#include <string>

#include <xalanc/XalanDOM/XalanDOMDefinitions.hpp>

namespace XALAN_CPP_NAMESPACE {
class XSLTInputSource;
class XalanDocumentBuilder;
} // namespace XALAN_CPP_NAMESPACE

/** Converts an engine string to UTF-8. */
std::string narrow(const xalanc::XalanDOMChar* text);

const void* nodeOf(const xalanc::XSLTInputSource& source);

const void* documentOf(xalanc::XalanDocumentBuilder* builder);
