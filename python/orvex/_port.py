"""Serial ports as files."""

from __future__ import annotations

import grp
import os
import pwd
import stat
from typing import Optional, Tuple

Identity = Tuple[int, int, int]


def identity(port: str) -> Optional[Identity]:
    """Tells a port from another that takes its path after it was unplugged; None: it is gone."""
    try:
        node = os.stat(port)
    except OSError:
        return None
    return node.st_dev, node.st_ino, node.st_rdev


def is_same(path: str, port: str) -> bool:
    """Whether a path, perhaps a link such as those in /dev/serial/by-id, leads to a port."""
    return path == port or os.path.realpath(path) == os.path.realpath(port)


def refusal(port: str) -> Optional[str]:
    """Why the user may not use a port; None: the user may, or the port is gone."""
    try:
        node = os.stat(port)
    except OSError:
        return None
    if os.access(port, os.R_OK | os.W_OK):
        return None
    owner, group = _user(node.st_uid), _group(node.st_gid)
    mode = stat.filemode(node.st_mode)
    user = _user(os.geteuid())
    return (
        f"no permission: {port} belongs to {owner}:{group} ({mode}), and user {user} may not read "
        f"and write it. On Debian: sudo usermod -aG dialout {user}, then log in again"
    )


def _user(number: int) -> str:
    try:
        return pwd.getpwuid(number).pw_name
    except KeyError:
        return str(number)


def _group(number: int) -> str:
    try:
        return grp.getgrgid(number).gr_name
    except KeyError:
        return str(number)
