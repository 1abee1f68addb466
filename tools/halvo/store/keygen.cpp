#include <cstdio>
#include <string>

#include "options.h"
#include "store/signing_key.h"
#include "store/store_commands.h"

namespace halvo {

using namespace quellaro;

int storeKeygen(int argc, char** argv) {
  CommandLine commandLine;
  commandLine.usage = "store keygen KEYFILE";
  commandLine.summary =
      "Makes a key to sign cues with. The private key goes into KEYFILE, which only its owner can read and which is "
      "not\n"
      "to be there yet; keep it off the machine that serves the store, and keep a copy. The public key is printed: it "
      "is\n"
      "the value of \"assetPublicKey\" in the Info.json of devices that are to take signed cues only "
      "(those of this version do not check yet; 'halvo store verify --key' does).";
  commandLine.minimumPositional = commandLine.maximumPositional = 1;
  const Parsed parsed = parse(commandLine, argc, argv);
  if (parsed.exitStatus) return *parsed.exitStatus;
  const Result<SigningKey> key = SigningKey::generate();
  if (!key) return failure(key.error().localizedDescription);
  const Result<std::string> publicKey = key->publicKey();
  if (!publicKey) return failure(publicKey.error().localizedDescription);
  if (const auto written = key->write(parsed.positional[0]); !written)
    return failure("no key was made: " + written.error().localizedDescription);
  std::puts(publicKey->c_str());
  return kExitFine;
}

}  // namespace halvo
