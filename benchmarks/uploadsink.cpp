// The limit of a server that takes an upload as it comes: the HTTP library of the host, and little else.
// Prints its port and serves until it is ended.
//
//   bench_uploadsink FILE
#include <httplib.h>

#include <cstdio>
#include <memory>

namespace {

constexpr std::size_t kLimitBytes = std::size_t{1} << 30;
constexpr std::size_t kBufferBytes = std::size_t{256} << 10;  // as the host's

bool BeginNothing(const httplib::MultipartFormData& /*field*/) {
    return true;
}

bool Drop(const char* /*bytes*/, std::size_t /*sizeBytes*/) {
    return true;
}

void DropBody(const httplib::Request&, httplib::Response& response, const httplib::ContentReader& read) {
    response.status = read(Drop) ? 200 : 400;
}

void DropForm(const httplib::Request&, httplib::Response& response, const httplib::ContentReader& read) {
    response.status = read(BeginNothing, Drop) ? 200 : 400;
}

void KeepForm(const char* path, httplib::Response& response, const httplib::ContentReader& read) {
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path, "wb"), std::fclose);
    const bool isKept = file != nullptr && std::setvbuf(file.get(), nullptr, _IOFBF, kBufferBytes) == 0 &&
                        read(BeginNothing,
                             [&](const char* bytes, std::size_t sizeBytes) {
                                 return std::fwrite(bytes, 1, sizeBytes, file.get()) == sizeBytes;
                             }) &&
                        std::fflush(file.get()) == 0;
    response.status = isKept ? 200 : 400;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        return 2;
    }
    httplib::Server server;
    server.set_tcp_nodelay(true);
    server.set_payload_max_length(kLimitBytes);
    server.Post("/body", DropBody);
    server.Post("/form", DropForm);
    server.Post("/kept", [path = argv[1]](const auto&, auto& response, const auto& read) {
        KeepForm(path, response, read);
    });
    const int port = server.bind_to_any_port("127.0.0.1");
    std::printf("%d\n", port);
    std::fflush(stdout);
    return port > 0 && server.listen_after_bind() ? 0 : 1;
}
