#include "url/FileKindTables.h"

namespace velmo::detail {
namespace {

/// 22
constexpr std::string_view Images[] = {"jpeg", "jpe", "jpg", "jfif", "ief", "gif", "png", "bmp",
                                       "tiff", "tif", "ras", "cmx",  "ico", "pnm", "pbm", "pgm",
                                       "ppm",  "rgb", "xbm", "xwd",  "cod", "mjpg"};

/// 24
constexpr std::string_view Markup[] = {
    "sgm", "sgml", "dtd",     "xml",  "xsl",   "xslt",       "xbl",     "ent",
    "wml", "opml", "plist",   "sdef", "idata", "xmloutline", "rss",     "rdf",
    "rsd", "tbx",  "tfilter", "xsd",  "wsdl",  "dita",       "ditamap", "ditaval"};

/// 2
constexpr std::string_view RichText[] = {"rtf", "rtfd"};

/// 2
constexpr std::string_view Executables[] = {"class", "exe"};

/// 91, shorter ones first
constexpr std::string_view Multimedia[] = {
    "ra",   "rm",   "qt",   "au",   "dv",   "ts",   "avi",  "vfw",  "swf",  "swa",  "viv",  "ram",
    "wmv",  "wma",  "asf",  "asx",  "wvx",  "mov",  "mqv",  "mpe",  "mpm",  "mpa",  "mpv",  "m1v",
    "m1a",  "m1s",  "m15",  "m2v",  "m2a",  "m3u",  "m75",  "mpg",  "mp2",  "mp3",  "m4a",  "m4b",
    "m4v",  "mp4",  "m4p",  "aif",  "wav",  "snd",  "mid",  "rmi",  "3gp",  "3g2",  "flc",  "bwf",
    "pls",  "cel",  "gsm",  "dvd",  "qht",  "amr",  "aac",  "sdp",  "atr",  "dif",  "sdv",  "sd2",
    "smf",  "smi",  "caf",  "kar",  "amc",  "sml",  "qtz",  "flv",  "fid",  "f4v",  "moov", "mpeg",
    "mpv2", "mpga", "divx", "aiff", "aifc", "midi", "3gpp", "3gp2", "qtpf", "adts", "skin", "smil",
    "rtsp", "cdda", "qhtm", "rmvb", "webm", "m3u8", "movie"};

/// 27, shorter ones first
constexpr std::string_view Archives[] = {
    "gz",  "bz",  "7z",   "tgz",  "tar",  "tbz",   "bz2",   "bin",     "hqx",
    "sit", "zip", "jar",  "dmg",  "smi",  "img",   "lha",   "lzh",     "iso",
    "rar", "arj", "sitx", "gzip", "bzip", "bzip2", "bzip5", "torrent", "sparseimage"};

/// 11
constexpr std::string_view Office[] = {"xls", "xlsx", "xla", "xlc", "xlm", "xlt",
                                       "xlw", "pps",  "pot", "ppt", "pptx"};

/// 7
constexpr std::string_view Word[] = {"word", "doc", "docm", "docx", "dot", "dotm", "dotx"};

/// 2
constexpr std::string_view OpenOffice[] = {"odt", "ott"};

/// 2
constexpr std::string_view StarOffice[] = {"stw", "sxw"};

/// 1
constexpr std::string_view WordPerfect[] = {"wpd"};

/// 1
constexpr std::string_view PDF[] = {"pdf"};

/// 4
constexpr std::string_view PostScript[] = {"postscript", "ps", "eps", "ai"};

/// 19
constexpr std::string_view Audio[] = {"ra",  "au",   "ram",  "wma",  "mp3", "m3u", "m4a",
                                      "mpa", "m4p",  "aif",  "m2a",  "wav", "snd", "mid",
                                      "rmi", "aifc", "aiff", "mpga", "midi"};

/// 32; "mpe" stands twice, without harm
constexpr std::string_view Video[] = {
    "rm",   "qt",   "ts",   "mp2",  "mpe",  "wmv",  "asf",  "asx",  "mov",  "avi",  "mpe",
    "m1v",  "mp4",  "m2v",  "mpg",  "3g2",  "flc",  "wvx",  "flv",  "m4v",  "f4v",  "fid",
    "mpeg", "divx", "moov", "mpv2", "rmvb", "webm", "3gpp", "3gp2", "m3u8", "movie"};

/// 2
constexpr std::string_view Embedded[] = {"swf", "viv"};

}  // namespace

Extensions imageExtensions() noexcept { return Images; }
Extensions markupExtensions() noexcept { return Markup; }
Extensions richTextExtensions() noexcept { return RichText; }
Extensions executableExtensions() noexcept { return Executables; }
Extensions multimediaExtensions() noexcept { return Multimedia; }
Extensions archiveExtensions() noexcept { return Archives; }
Extensions officeExtensions() noexcept { return Office; }
Extensions wordExtensions() noexcept { return Word; }
Extensions openOfficeExtensions() noexcept { return OpenOffice; }
Extensions starOfficeExtensions() noexcept { return StarOffice; }
Extensions wordPerfectExtensions() noexcept { return WordPerfect; }
Extensions pdfExtensions() noexcept { return PDF; }
Extensions postScriptExtensions() noexcept { return PostScript; }
Extensions audioExtensions() noexcept { return Audio; }
Extensions videoExtensions() noexcept { return Video; }
Extensions embeddedExtensions() noexcept { return Embedded; }

}  // namespace velmo::detail
