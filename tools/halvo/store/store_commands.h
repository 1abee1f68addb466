#pragma once

namespace halvo {

// `halvo store COMMAND`: each has a file of its own. argv[0] is "store COMMAND"; the result is the exit status.
int storeList(int argc, char** argv);
int storeVerify(int argc, char** argv);
int storeDiff(int argc, char** argv);
int storeRollback(int argc, char** argv);
int storePrune(int argc, char** argv);
int storeKeygen(int argc, char** argv);

}  // namespace halvo
