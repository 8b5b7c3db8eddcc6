# SPDX-License-Identifier: Apache-2.0
"""The peers that are measured beside the library: their names, their lines in plots, and notes."""

from typing import NamedTuple

YES, SIGNALS, NO, FLOOR = "yes", "its signals", "no", "floor"


class Peer(NamedTuple):
    label: str
    safe: str      # whether threads may announce, or raise, at the same time
    colour: str
    note: str      # what it does differently from the library, or leaves out

    @property
    def is_rival(self):
        """True for a peer that is safe in the use of threads; the library is to be ahead of it."""
        return self.safe in (YES, SIGNALS)


OURS = "ours"
BLUE, RED, PURPLE, GREEN, BROWN, GREY, TEAL = ("#1f77d0", "#d1495b", "#9260c8", "#2a9d5c",
                                               "#b9770e", "#808080", "#0f8b8d")

SIGNALS_OF = {
    "ours": Peer("DataBinding", YES, BLUE,
                 "looks the name up, and survives listeners that throw or fault"),
    "floor": Peer("floor", FLOOR, GREY,
                  "a loop over an array of functions with contexts: no names, locks or cancelling"),
    "farfloor": Peer("far floor", FLOOR, GREY,
                     "the same loop in another module than its listeners"),
    "naive": Peer("naive", YES, GREY,
                  "maps under a lock, whose callbacks are copied for each broadcast; an exception "
                  "of a listener ends the broadcast"),
    "boost": Peer("Boost signal", YES, RED,
                  "no names; an exception of a listener ends the broadcast"),
    "boostmap": Peer("Boost signals in a map", SIGNALS, RED,
                     "a signal for each name in a hash map that no lock protects"),
    "sigc": Peer("libsigc++ signal", NO, PURPLE,
                 "no names, locks or atomics; an exception of a listener ends the broadcast"),
    "sigcmap": Peer("libsigc++ signals in a map", NO, PURPLE,
                    "a signal for each name in a hash map"),
    "sigslot": Peer("sigslot signal", YES, TEAL,
                    "no names; an exception of a listener ends the broadcast"),
    "sigslotmap": Peer("sigslot signals in a map", SIGNALS, TEAL,
                       "a signal for each name in a hash map that no lock protects"),
    "qt": Peer("Qt signal", YES, GREEN,
               "direct connections; no names; a listener must not throw"),
    "qtmap": Peer("Qt signals in a map", SIGNALS, GREEN,
                  "an object for each name in a hash map that no lock protects"),
    "qtbindable": Peer("QProperty", NO, GREEN,
                       "notifiers; no names; stores a number, too, since only a change is "
                       "announced; cannot be asked whether anybody listens"),
    "qtdynamic": Peer("Qt dynamic property", NO, GREEN,
                      "stores a number, too; the object finds its listeners, functions in a "
                      "hash map, when it receives the event of the change"),
    "glib": Peer("GObject signal", YES, BROWN,
                 "one lock for the handlers of all objects; no names; a listener must not throw"),
    "glibdetail": Peer("GObject signal, details", YES, BROWN,
                       "the name is a detail of one signal; names are turned into numbers by one "
                       "table of the process"),
    "glibnotify": Peer("GObject notify", NO, BROWN,
                       "announces a property without setting it"),
}

PROPERTIES = {
    "ours": Peer("Property", YES, BLUE, "a property of a data source, where its class "
                 "is known; its value belongs to one thread, its listeners to any"),
    "oursnamed": Peer("SetProperty by name", YES, BLUE, "finds the property by its name and "
                      "checks its type each time"),
    "oursfound": Peer("PropertyRef", YES, BLUE, "the same, found once"),
    "oursany": Peer("AnyPropertyRef", YES, BLUE, "found once, without knowing the type: the number "
                    "is a Value"),
    "floor": Peer("floor", FLOOR, GREY, "compares and stores a number, then loops over an array"),
    "boost": Peer("number + Boost signal", YES, RED, "compares and stores; a signal at its side"),
    "sigc": Peer("number + libsigc++ signal", NO, PURPLE, "the same"),
    "sigslot": Peer("number + sigslot signal", YES, TEAL, "the same; a signal that threads may "
                    "share"),
    "qt": Peer("Qt property, setter", YES, GREEN, "a declared property with a signal; its class "
               "is known"),
    "qtnamed": Peer("Qt property, by name", YES, GREEN, "the same through setProperty"),
    "qtbindable": Peer("QProperty", NO, GREEN, "a bindable property with notifiers"),
    "qtdynamic": Peer("Qt dynamic property", NO, GREEN, "by name; an event of the change"),
    "glib": Peer("GObject property", NO, BROWN, "by name; g_object_set and notify"),
}

EVENTS = {
    "ours": Peer("AppEvent", YES, BLUE, "typed, by name; held while disabled; hooks; listeners "
                 "may cancel and throw"),
    "floor": Peer("floor", FLOOR, GREY, "a lock and a vector of plain structures; the newest of a "
                  "name is sought from the back; delivery is a loop in another module"),
    "functions": Peer("functions", YES, GREY, "a lock and a vector of functions, each of which "
                      "carries its event with its name and knows its listeners; they cannot "
                      "cancel"),
    "boost": Peer("functions + Boost signal", YES, RED, "the same queue; delivered by a signal"),
    "sigc": Peer("functions + libsigc++ signal", YES, PURPLE, "the same queue; delivered by a "
                 "signal that only the delivering thread uses"),
    "qt": Peer("Qt posted event", YES, GREEN, "a receiver for each name; replaced by removing and "
               "posting; delivered to several by a signal"),
    "qtqueued": Peer("Qt queued connection", YES, GREEN, "posts an event for each listener"),
    "glib": Peer("GLib idle source", YES, BROWN, "a source for each event; replaced by "
                 "destroying and attaching; delivered to several by a signal"),
}

BINDS = {
    "ours": Peer("DataBind", YES, BLUE, "follows the source through scopes by its name, and hands "
                 "the value on"),
    "asking": Peer("DataBind that is asked", YES, BLUE, "the same, where the function asks the bind "
                   "for the value"),
    "callback": Peer("callback at the source", YES, BLUE, "knows the source; the library without "
                     "a bind"),
    "qt": Peer("Qt signal", YES, GREEN, "knows the source"),
    "qtbindable": Peer("QProperty binding", NO, GREEN, "knows the source"),
    "glib": Peer("g_object_bind_property", NO, BROWN, "knows the source; sets a second property"),
}

RECORDS = {
    "ours": Peer("data source", YES, BLUE, "six typed properties, which can be found and listed by "
                 "name and announce their changes"),
    "floor": Peer("structure", FLOOR, GREY, "six plain members; tells nobody"),
    "qt": Peer("QObject", YES, GREEN, "six declared properties, each with a signal"),
    "qtitem": Peer("QStandardItem", NO, GREEN, "an item with six more in one row, as item models "
                   "hold it; its model announces"),
    "glib": Peer("GObject", NO, BROWN, "six properties of a class"),
}

SOURCES = {
    "ours": Peer("provider", NO, BLUE, "scopes, sources built on demand, listeners that wait"),
    "hashmap": Peer("hash map", NO, GREY, "std::unordered_map: names to pointers"),
    "treemap": Peer("ordered map", NO, GREY, "std::map: names to pointers"),
    "qt": Peer("QObject::findChild", NO, GREEN, "compares the names of all children"),
}
