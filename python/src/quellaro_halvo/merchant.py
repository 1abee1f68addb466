"""On whose behalf a cue is played."""
import ctypes
from collections.abc import Sequence

from ._library import Handle, HalvoError, functions, string, text
from ._signatures import Result


class Merchant(Handle):
    """Never changes. Merchants are equal when id, country code and city are."""

    def __init__(self, name: str, country_code: str, category_codes: Sequence[str], *, city: str | None = None,
                 identifier: str | None = None):
        """Name, country code and codes must not be empty; an identifier that is left out is made of the name."""
        if not name or not country_code or not category_codes or isinstance(category_codes, str):
            raise HalvoError("a merchant has a name, a country code and a list of category codes", Result.INVALID_VALUE)
        codes = (ctypes.c_char_p * len(category_codes))(*map(text, category_codes))
        super().__init__(functions().merchant_create(text(name), text(country_code), text(city), codes, len(codes), text(identifier)),
                         functions().merchant_release)

    @property
    def name(self) -> str:
        return string(functions().merchant_name(self.pointer))

    @property
    def country_code(self) -> str:
        return string(functions().merchant_country_code(self.pointer))

    @property
    def city(self) -> str | None:
        city = functions().merchant_city(self.pointer)
        return None if city is None else city.decode()

    @property
    def category_codes(self) -> list[str]:
        count = functions().merchant_category_code_count(self.pointer)
        return [string(functions().merchant_category_code(self.pointer, index)) for index in range(count)]

    @property
    def identifier(self) -> str:
        return string(functions().merchant_identifier(self.pointer))

    def __str__(self) -> str:
        return string(functions().merchant_description(self.pointer))

    def __hash__(self) -> int:
        return functions().merchant_hash(self.pointer)

    def __eq__(self, other: object) -> bool:
        return isinstance(other, Merchant) and functions().merchant_is_equal(self.pointer, other.pointer)
