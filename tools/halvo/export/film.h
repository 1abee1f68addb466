#pragma once

#include <cstddef>
#include <functional>
#include <string>

#include "export/film_form.h"
#include "export/film_source.h"
#include "options.h"

namespace halvo {

enum class FilmGround { Transparent, Black, White };

struct FilmOrder {
  std::string target;
  const FilmForm* form = nullptr;
  Size size;
  FilmGround ground = FilmGround::Black;
  bool loops = false;
};

// Writes all of the film, or nothing at all.
std::optional<quellaro::NSError> writeFilm(FilmSource& source, const FilmOrder& order,
                                           const std::function<void(std::size_t done, std::size_t total)>& progress);

}  // namespace halvo
