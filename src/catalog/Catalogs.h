/**
 * @file
 * XML catalogs, as libxml2 reads them.
 */
#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <libxml/catalog.h>

/** A list of catalogs. Any thread may use it. */
class Catalogs {
public:
    /** Reads nothing yet. */
    explicit Catalogs(const std::vector<std::filesystem::path>& files);
    Catalogs(const Catalogs&) = delete;
    Catalogs& operator=(const Catalogs&) = delete;
    ~Catalogs();

    /**
     * The absolute URI that stands for a reference; nothing where no catalog has one.
     * @param publicId empty where there is none
     */
    std::optional<std::string> find(const std::string& uri, const std::string& publicId);

private:
    struct Free {
        void operator()(xmlCatalogPtr catalog) const { xmlFreeCatalog(catalog); }
    };

    void load();

    /** Absolute; those that are not read yet. */
    std::vector<std::filesystem::path> m_files;
    std::vector<std::unique_ptr<xmlCatalog, Free>> m_catalogs;
};
