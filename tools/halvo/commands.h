#pragma once

namespace halvo {

// Each command has a file of its own. argv[0] is the command's name; the result is the exit status.
int play(int argc, char** argv);
int preview(int argc, char** argv);
int import(int argc, char** argv);
int layers(int argc, char** argv);
int publish(int argc, char** argv);
int store(int argc, char** argv);
int usage(int argc, char** argv);
int frame(int argc, char** argv);
int bench(int argc, char** argv);
int sheet(int argc, char** argv);
int check(int argc, char** argv);
int exportFilm(int argc, char** argv);

}  // namespace halvo
