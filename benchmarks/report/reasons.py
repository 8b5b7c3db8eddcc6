# SPDX-License-Identifier: Apache-2.0
"""The reasons why a peer that is safe in the use of threads is ahead, as a profile shows them.

The key is the sweep's slug and the peer; the peer None stands for all others of the sweep.
"""

NAME_AND_GUARD = (
    "One listener: a quarter of our time finds the name (PropertyTable::Find and the comparison), "
    "a tenth guards against faults (RunTrapping, sigsetjmp). A Qt signal is found by nothing and "
    "guards nothing; from ten listeners on its list costs more than both.")
FIRST_OF_A_NAME = (
    "Malloc and free are much of it: the first listener of a name makes a list and the last one takes "
    "it away again, beside the callback's state.")
SEARCH_BY_NUMBER = (
    "Much of the time is ListenerArray::Find, which seeks the listener by its number in one array, "
    "and so waits for memory; a connection of Qt is a node that knows its neighbours. The array is "
    "what makes the broadcast to as many several times as fast.")
STATE_AND_LOCK = (
    "An allocation for the callback's shared state, and a lock; a std::function of this size allocates "
    "nothing, and its map one node.")
OUT_OF_LINE = (
    "An empty std::unordered_map is made and asked inline. Ours is made and ended inline, and asked by a "
    "virtual call into the shared library.")
ENTRIES_IN_MEMORY = (
    "Memory: beside 10,000 names three quarters of our time is in PropertyTable::Find, which meets "
    "an entry and its text that the caches do not hold.")
LISTENER_BYTES = (
    "The callback's state, shared by whoever holds it, takes 48 bytes, the Subscription 24, and the place "
    "in the array 32 and what it has grown ahead; the first listener adds the registry with its lock, and "
    "the list of the name, 290 bytes.")
SIGSLOT_EMITS = (
    "A sigslot signal is found by nothing and guards nothing, and all of its code is compiled into its "
    "caller: an emission takes its mutex and copies one shared pointer. Ours finds the name (a quarter of "
    "the time) and guards against faults (a tenth).")
SIGSLOT_KEEPS_ITS_PLACE = (
    "A sigslot connection knows its place in the signal's vector, and a cancelled one is replaced by the "
    "last, which changes the order of calls. Ours keeps the order, and so finds the listener by its number.")

REASONS = {
    ("broadcast", "sigslot"): SIGSLOT_EMITS,
    ("broadcast", "sigslotmap"): SIGSLOT_EMITS,
    ("set", "sigslot"): SIGSLOT_EMITS,
    ("names", "sigslotmap"): SIGSLOT_EMITS,
    ("threads", "sigslot"): SIGSLOT_EMITS,
    ("threads", "sigslotmap"): SIGSLOT_EMITS,
    ("newest", "sigslot"): FIRST_OF_A_NAME,
    ("newest", "sigslotmap"): FIRST_OF_A_NAME,
    ("random", "sigslot"): SIGSLOT_KEEPS_ITS_PLACE,
    ("random", "sigslotmap"): SIGSLOT_KEEPS_ITS_PLACE,
    ("random-names", "sigslotmap"): FIRST_OF_A_NAME + " A signal stays in its map.",
    ("first", "sigslot"): FIRST_OF_A_NAME,
    ("broadcast", "qt"): NAME_AND_GUARD,
    ("broadcast", "qtmap"): NAME_AND_GUARD,
    ("set", "qt"):
        NAME_AND_GUARD + " A property of ours announces by its name, too.",
    ("names", "qtmap"): NAME_AND_GUARD,
    ("names", "naive"): ENTRIES_IN_MEMORY,
    ("newest", "qt"): FIRST_OF_A_NAME,
    ("newest", "qtmap"): FIRST_OF_A_NAME,
    ("newest", "naive"): STATE_AND_LOCK,
    ("random", "qt"): SEARCH_BY_NUMBER,
    ("random", "qtmap"): SEARCH_BY_NUMBER,
    ("random", "naive"): STATE_AND_LOCK + " Beside 10,000 both wait for memory.",
    ("newest-names", None): ENTRIES_IN_MEMORY,
    ("random-names", "naive"): STATE_AND_LOCK,
    ("random-names", "qtmap"): FIRST_OF_A_NAME + " A signal stays in its map.",
    ("first", "qt"): FIRST_OF_A_NAME,
    ("idle", "boostmap"): OUT_OF_LINE,
    ("idle", "qtmap"): OUT_OF_LINE,
    ("bind", "qt"):
        "The connection knows its source. A bind follows whatever source has the name: two thirds of "
        "the instructions, and nearly three quarters of the time, announce the property by its name "
        "under the guard. The others walk the bind's subscribers (BindConnection::Notify), each of "
        "which may end the bind or be cancelled on any thread: for this the walk begins and ends with "
        "a memory fence, which together take more than half of what the bind adds.",
    ("queue", "functions"):
        "Memory: beside 10,000 names two fifths wait for the event's channel "
        "(NamedEvent::Dispatch) and its callback, which are allocated one by one; the functions "
        "keep their listeners' lists side by side. With one name it is the look at holds and "
        "hooks.",
    ("queue", "sigc"):
        "Memory, as beside the functions.",
    ("deliver", "functions"):
        "One event at a time pays for a batch of one: entering the queue twice and looking at "
        "holds and hooks (DispatchPendingEvents, NamedEvent::Dispatch and the lock, a half). From "
        "100 listeners on the call of each is all, and both are within a few hundredths.",
    ("memory-property", None):
        "A data source is found and listed by name, is post-constructed and tells when it ends: it "
        "takes 144 bytes, the property 48 more.",
    ("memory-record", None):
        "The properties of a QObject belong to its class, and the object keeps six plain members. "
        "Ours are objects that know their source and their name, 40 bytes each beside the value.",
    ("records", None):
        "Each of the six properties finds its kept name (three tenths of the instructions) and files "
        "itself in its source's chain by a virtual call, which an override may hear (more than two "
        "fifths); a QObject sets six members. The rest makes the source and its memory, which "
        "MakeDataSource clears first, as std::make_unique does.",
    ("records-threads", None):
        "As for one thread; nothing is shared between the threads but the names, which are not "
        "counted.",
    ("memory-listener", None): LISTENER_BYTES,
}


def reason(slug, peer):
    return REASONS.get((slug, peer)) or REASONS.get((slug, None)) or "Not profiled yet."
