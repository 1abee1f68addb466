#pragma once

#include <filesystem>
#include <string>

#include "support/child_process.h"
#include "support/temporary_directory.h"

namespace quellaro {

// Certificate and key of a server at 127.0.0.1, in PEM files. It is its own authority.
struct Certificate {
  std::filesystem::path certificate;
  std::filesystem::path key;
};

// Made with the openssl program, in `directory`. The dates are YYYYMMDDHHMMSSZ.
Certificate makeCertificate(const std::filesystem::path& directory, const std::string& notBefore,
                            const std::string& notAfter);

// nginx, serving a directory on the loopback.
class NginxServer {
 public:
  // With https when a certificate is given.
  explicit NginxServer(const std::filesystem::path& root, const Certificate* certificate = nullptr);
  NginxServer(const NginxServer&) = delete;
  NginxServer& operator=(const NginxServer&) = delete;

  // "http://127.0.0.1:PORT", or https.
  const std::string& address() const { return address_; }

 private:
  TemporaryDirectory directory_;
  std::string address_;
  ChildProcess process_;
};

}  // namespace quellaro
