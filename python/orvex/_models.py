"""Models by their names and numbers."""

from __future__ import annotations

import difflib
from typing import Dict, Iterable, Tuple, Union

from ._commands import COMMANDS, FOUND_BY_SCAN, MODELS
from ._errors import ERR_INVALID_ARG, ArgumentError

_NAMES: Dict[str, str] = {name.lower(): name for name in COMMANDS}


def models() -> Tuple[str, ...]:
    """The names of all models."""
    return tuple(MODELS.values())


def commands_of(model: str) -> Tuple[str, ...]:
    """The names of a model's commands, in alphabetical order."""
    return COMMANDS[model_name(model)]


def model_name(model: Union[str, int]) -> str:
    """A model's name as the library writes it; of a name in any case, or a number."""
    name = MODELS.get(model) if isinstance(model, int) else _NAMES.get(model.lower())
    if name is None:
        hint = did_you_mean(str(model), MODELS.values())
        raise ArgumentError(f"there is no model {model!r}{hint}", ERR_INVALID_ARG)
    return name


def is_found_by_scan(model: str) -> bool:
    """Whether the library finds devices of the model."""
    return model in FOUND_BY_SCAN


def did_you_mean(word: str, known: Iterable[str]) -> str:
    """ "; did you mean GetTemperature?", or nothing."""
    by_lower_case = {name.lower(): name for name in known}
    near = difflib.get_close_matches(word.lower(), by_lower_case, n=1)
    return f"; did you mean {by_lower_case[near[0]]}?" if near else ""
