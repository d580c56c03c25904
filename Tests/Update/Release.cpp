#include "Tests/Update/Release.h"

#include "Platform/Posix/PropertyLists/PropertyListFile.h"
#include "Platform/Posix/PropertyLists/PropertyListScalars.h"
#include "Platform/Posix/PropertyLists/PropertyListWriter.h"

#include <archive.h>
#include <archive_entry.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace farview
{
namespace
{

namespace fs = std::filesystem;

std::string contentsOf(const fs::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void write(const fs::path& path, const std::string& text, fs::perms mode = fs::perms(0644))
{
    fs::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << text;
    fs::permissions(path, mode);
}

mode_t typeOf(ArchiveEntry::Kind kind)
{
    switch (kind) {
    case ArchiveEntry::Kind::folder:
        return AE_IFDIR;
    case ArchiveEntry::Kind::symbolicLink:
        return AE_IFLNK;
    case ArchiveEntry::Kind::device:
        return AE_IFCHR;
    default:
        return AE_IFREG;
    }
}

void describe(archive_entry* header, const ArchiveEntry& entry)
{
    using Kind = ArchiveEntry::Kind;
    archive_entry_set_pathname(header, entry.path.c_str());
    archive_entry_set_filetype(header, typeOf(entry.kind));
    archive_entry_set_perm(header, entry.mode);
    if (entry.kind == Kind::symbolicLink)
        archive_entry_set_symlink(header, entry.contents.c_str());
    if (entry.kind == Kind::hardLink)
        archive_entry_set_hardlink(header, entry.contents.c_str());
    const auto size = entry.zeros > 0 ? entry.zeros : entry.contents.size();
    archive_entry_set_size(header, entry.kind == Kind::file ? static_cast<la_int64_t>(size) : 0);
}

void fill(archive* writer, const ArchiveEntry& entry)
{
    archive_write_data(writer, entry.contents.data(), entry.contents.size());
    static const std::string zeros(1u << 20, '\0');
    for (auto left = entry.zeros; left > 0; left -= std::min<std::uint64_t>(left, zeros.size()))
        archive_write_data(writer, zeros.data(), std::min<std::uint64_t>(left, zeros.size()));
}

la_ssize_t append(archive*, void* text, const void* bytes, std::size_t count)
{
    static_cast<std::string*>(text)->append(static_cast<const char*>(bytes), count);
    return static_cast<la_ssize_t>(count);
}

std::string escaped(const std::string& text)
{
    std::string result;
    for (const char each : text) {
        if (each == '&')
            result += "&amp;";
        else if (each == '<')
            result += "&lt;";
        else if (each == '"')
            result += "&quot;";
        else
            result += each;
    }
    return result;
}

std::string itemOf(const Offer& offer)
{
    std::string item = "<item><title>" + escaped(offer.version) + "</title><farview:version>" +
                       escaped(offer.version) + "</farview:version>";
    if (!offer.minimumSystemVersion.empty())
        item += "<farview:minimumSystemVersion>" + offer.minimumSystemVersion +
                "</farview:minimumSystemVersion>";
    item += "<description>" + escaped(offer.notes) + "</description><enclosure url=\"" +
            escaped(offer.address) + "\" length=\"" + std::to_string(offer.length) + "\"";
    if (!offer.signature.empty())
        item += " farview:edSignature=\"" + escaped(offer.signature) + "\"";
    return item + " type=\"application/octet-stream\"/></item>\n";
}

std::string secondsFromNow(int seconds)
{
    return textFromDate({static_cast<double>(std::time(nullptr) + seconds)}).value();
}

PropertyList::Dictionary infoOf(const std::string& bundle)
{
    const auto file = readDictionaryFile(bundle + "/Contents/Info.plist");
    return file.list ? *file.list->get<PropertyList::Dictionary>() : PropertyList::Dictionary{};
}

} // namespace

std::string packed(const std::vector<ArchiveEntry>& entries)
{
    std::string bytes;
    archive* writer = archive_write_new();
    archive_write_set_format_pax_restricted(writer);
    archive_write_add_filter_xz(writer);
    archive_write_set_filter_option(writer, "xz", "compression-level", "0");
    archive_write_open(writer, &bytes, nullptr, append, nullptr);
    for (const auto& entry : entries) {
        archive_entry* header = archive_entry_new();
        describe(header, entry);
        if (archive_write_header(writer, header) != ARCHIVE_OK)
            throw std::runtime_error(archive_error_string(writer));
        if (entry.kind == ArchiveEntry::Kind::file)
            fill(writer, entry);
        archive_entry_free(header);
    }
    archive_write_close(writer);
    archive_write_free(writer);
    return bytes;
}

std::vector<ArchiveEntry> entriesOf(const std::string& bundle)
{
    const fs::path parent = fs::path(bundle).parent_path();
    std::vector<ArchiveEntry> entries{
        {fs::path(bundle).filename(), ArchiveEntry::Kind::folder, {}, 0755, 0}};
    for (const auto& each : fs::recursive_directory_iterator(bundle)) {
        const bool isFolder = each.is_directory();
        entries.push_back({each.path().lexically_relative(parent),
                           isFolder ? ArchiveEntry::Kind::folder : ArchiveEntry::Kind::file,
                           isFolder ? std::string() : contentsOf(each.path()),
                           static_cast<unsigned>(each.status().permissions()), 0});
    }
    return entries;
}

void setInfo(const std::string& bundle, const std::map<std::string, std::string>& values)
{
    auto info = infoOf(bundle);
    for (const auto& [key, value] : values)
        info[key] = value;
    write(bundle + "/Contents/Info.plist", PropertyListWriter::write(info).bytes.value());
}

std::string infoText(const std::string& bundle, const std::string& key)
{
    return textFor(infoOf(bundle), key);
}

std::map<std::string, std::string> snapshot(const std::string& folder)
{
    std::map<std::string, std::string> all;
    for (const auto& each : fs::recursive_directory_iterator(folder)) {
        const auto status = each.symlink_status();
        const auto mode = std::to_string(static_cast<int>(status.permissions()));
        const auto name = each.path().lexically_relative(folder).string();
        all[name] = mode + (fs::is_regular_file(status) ? ":" + contentsOf(each.path()) : "/");
    }
    return all;
}

Offer offerOf(const std::string& archive, const std::string& version, const std::string& address,
              const SigningKey& key)
{
    Offer offer;
    offer.version = version;
    offer.address = address;
    offer.signature = key.signatureOf(archive);
    offer.length = archive.size();
    return offer;
}

std::string feedOf(const std::vector<Offer>& offers, int isSigned, int expires)
{
    std::string feed = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<rss version=\"2.0\" "
                       "xmlns:farview=\"urn:x-farview:updates\" farview:signed=\"" +
                       secondsFromNow(isSigned) + "\" farview:expires=\"" +
                       secondsFromNow(expires) + "\"><channel><title>Updates</title>\n";
    for (const auto& offer : offers)
        feed += itemOf(offer);
    return feed + "</channel></rss>\n";
}

std::string makeBundle(const std::string& folder, const std::string& version,
                       const std::string& feed, const std::string& publicKey)
{
    const std::string bundle = folder + "/Example Pane.prefPane";
    write(bundle + "/Contents/Resources/Text.txt", "The text of version " + version + "\n");
    write(bundle + "/Contents/Linux/program", "#!/bin/sh\necho " + version + "\n", fs::perms(0755));
    setInfo(bundle, {{"CFBundleIdentifier", "com.quillon.Example"},
                     {"CFBundleVersion", version},
                     {"SUFeedURL", feed},
                     {"SUPublicEDKey", publicKey}});
    return bundle;
}

std::string copyPane(const std::string& pane, const std::string& folder)
{
    const fs::path copy = fs::path(folder) / fs::path(pane).filename();
    fs::create_directories(folder);
    fs::copy(pane, copy, fs::copy_options::recursive);
    const std::string command = "find '" + copy.string() +
                                "' -type f -perm -u+x -exec strip --strip-debug {} + 2>/dev/null";
    // What is no program is left as it is.
    [[maybe_unused]] const int status = std::system(command.c_str());
    return copy.string();
}

} // namespace farview
