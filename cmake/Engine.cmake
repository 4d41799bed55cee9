# The engine: Xalan-C over Xerces-C, as one target for all code that includes its headers.

find_package(XercesC REQUIRED)
find_package(XalanC REQUIRED)

add_library(vexa_engine INTERFACE)
target_link_libraries(vexa_engine INTERFACE XalanC::XalanC XercesC::XercesC)
# One of the engine's own headers includes another without its folder.
target_include_directories(vexa_engine SYSTEM
                           INTERFACE "${XalanC_INCLUDE_DIR}/xalanc/PlatformSupport")

string(REGEX MATCH "^([0-9]+)\\.([0-9]+)" _ "${XalanC_VERSION}")
set(VEXA_ENGINE_NAMESPACE "xalanc_${CMAKE_MATCH_1}_${CMAKE_MATCH_2}")
