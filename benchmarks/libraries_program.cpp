// The least that a program with the same libraries contains: it calls what Ormacon calls of them, and does nothing
// else.
#include <iostream>
#include <locale>
#include <sstream>

#include <boost/date_time/posix_time/posix_time.hpp>
#include <boost/filesystem.hpp>
#include <boost/program_options.hpp>
#include <tinyxml.h>
#include <zlib.h>

namespace {

void use_options(int argc, const char* const* argv) {
    namespace po = boost::program_options;
    po::options_description options;
    options.add_options()("text", po::value<std::string>())("number", po::value<int>());
    options.add_options()("words", po::value<std::vector<std::string>>()->multitoken());
    po::variables_map variables;
    const po::positional_options_description none;
    po::store(po::command_line_parser(argc, argv).options(options).positional(none).run(), variables);
    std::cout << options << std::endl;
}

void use_files(const std::string& name) {
    namespace fs = boost::filesystem;
    boost::system::error_code failure;
    const fs::path path = fs::absolute(fs::read_symlink(name, failure));
    if (fs::exists(fs::status(path, failure)) && !fs::is_directory(path)) fs::remove(path, failure);
}

void use_others(const std::string& name) {
    std::ostringstream text;
    text.imbue(std::locale(std::locale::classic(), new boost::posix_time::time_facet("[%d.%m.%Y %H:%M:%S] ")));
    text << boost::posix_time::ptime(boost::gregorian::date(2026, 1, 1));
    TiXmlDocument document;
    document.Parse(text.str().c_str());
    const gzFile written = gzopen(name.c_str(), "wb");
    gzwrite(written, text.str().data(), 1);
    gzclose(written);
    const gzFile read = gzopen(name.c_str(), "rb");
    std::cout << gzgetc(read) << document.ErrorDesc();
    gzclose(read);
}

}  // namespace

int main(int argc, char** argv) {
    use_options(argc, argv);
    use_files(argv[0]);
    use_others(argv[0]);
    return 0;
}
