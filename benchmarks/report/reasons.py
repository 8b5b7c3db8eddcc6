"""Why a peer that is safe in the use of threads is ahead, where it is, as a profile shows it.

By the sweep's slug and the peer; a peer of None stands for all.
"""

REASONS = {}


def reason(slug, peer):
    return REASONS.get((slug, peer)) or REASONS.get((slug, None)) or "not profiled yet"
