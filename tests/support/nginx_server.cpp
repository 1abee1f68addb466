#include "support/nginx_server.h"

#include <unistd.h>

#include <cstdlib>
#include <stdexcept>

#include "support/scripted_server.h"

namespace quellaro {

namespace {

void runOrThrow(const std::string& command) {
  if (std::system(command.c_str()) != 0) throw std::runtime_error("failed: " + command);
}

std::string configuration(const std::filesystem::path& root, const std::string& scratch, int port,
                          const Certificate* certificate) {
  std::string text = geteuid() == 0 ? "user root;\n" : "";
  text += "daemon off; master_process off; pid " + scratch + "/pid; error_log " + scratch + "/error.log;\n";
  text += "events { worker_connections 64; }\nhttp {\n  types { application/json json; audio/mpeg mp3; }\n";
  text += "  access_log off;\n";
  for (const char* kind : {"client_body", "proxy", "fastcgi", "uwsgi", "scgi"})
    text += std::string("  ") + kind + "_temp_path " + scratch + "/" + kind + ";\n";
  text += "  gzip on; gzip_min_length 1; gzip_types application/json;\n";
  text += "  server {\n    listen 127.0.0.1:" + std::to_string(port) + (certificate != nullptr ? " ssl" : "") + ";\n";
  if (certificate != nullptr)
    text += "    ssl_certificate " + certificate->certificate.string() + ";\n    ssl_certificate_key " +
            certificate->key.string() + ";\n";
  return text + "    root " + root.string() + ";\n  }\n}\n";
}

}  // namespace

Certificate makeCertificate(const std::filesystem::path& directory, const std::string& notBefore,
                            const std::string& notAfter) {
  std::filesystem::create_directories(directory / "new");
  writeFile(directory / "index.txt", "");
  writeFile(
      directory / "ca.conf",
      "[ca]\ndefault_ca = c\n[c]\ndatabase = index.txt\nnew_certs_dir = new\nrand_serial = yes\ndefault_md = sha256\n"
      "policy = p\nx509_extensions = e\n[p]\ncommonName = supplied\n"
      "[e]\nsubjectAltName = IP:127.0.0.1\nbasicConstraints = critical,CA:TRUE\n");
  runOrThrow("cd " + directory.string() +
             " && openssl req -new -newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -nodes -keyout key.pem -out "
             "request.pem -subj /CN=127.0.0.1 2>openssl.log && openssl ca -batch -selfsign -config ca.conf -keyfile "
             "key.pem -in request.pem -out certificate.pem -startdate " +
             notBefore + " -enddate " + notAfter + " >>openssl.log 2>&1");
  return {directory / "certificate.pem", directory / "key.pem"};
}

NginxServer::NginxServer(const std::filesystem::path& root, const Certificate* certificate) {
  const int port = freePort();
  address_ = (certificate != nullptr ? "https" : "http") + std::string("://127.0.0.1:") + std::to_string(port);
  writeFile(directory_ / "nginx.conf", configuration(root, directory_.path().string(), port, certificate));
  // Where Debian has it, which is not on everybody's path.
  process_ = ChildProcess({"/usr/sbin/nginx", "-c", directory_ / "nginx.conf", "-e", directory_ / "error.log"},
                          directory_ / "output");
  // Written when it listens.
  waitUntil("nginx does not start", [this] { return std::filesystem::exists(directory_ / "pid"); });
}

}  // namespace quellaro
