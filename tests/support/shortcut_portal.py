"""The desktop's portal for global shortcuts, as its public interface describes it, on the session bus.

Sessions and requests have paths made of the caller's name and token; a request is answered by a
signal, once its user has decided; a session takes shortcuts once, and knows only its own.
"""
import threading

from gi.repository import Gio, GLib

PATH = "/org/freedesktop/portal/desktop"
SHORTCUTS = "org.freedesktop.portal.GlobalShortcuts"
INTERFACES = f"""<node>
<interface name="{SHORTCUTS}">
  <property name="version" type="u" access="read"/>
  <method name="CreateSession"><arg type="a{{sv}}" direction="in"/><arg type="o" direction="out"/></method>
  <method name="BindShortcuts"><arg type="o" direction="in"/><arg type="a(sa{{sv}})" direction="in"/>
    <arg type="s" direction="in"/><arg type="a{{sv}}" direction="in"/><arg type="o" direction="out"/></method>
</interface>
<interface name="org.freedesktop.portal.Session"><method name="Close"/></interface>
</node>"""


class ShortcutPortal:
    """agrees: whether its user does, when he is asked."""

    def __init__(self, address, agrees=True):
        self.agrees = agrees
        self.sessions = {}  # by path: the shortcuts, as (id, description, trigger); None before any
        self.callers = {}
        self.refusals = 0
        self.ready = threading.Event()
        self.may_be_found = threading.Event()
        self.may_be_found.set()
        self.context = GLib.MainContext.new()
        self.loop = GLib.MainLoop.new(self.context, False)
        self.thread = threading.Thread(target=self._run, args=(address,))
        self.thread.start()
        self.ready.wait()

    def end(self):
        self.loop.quit()
        self.thread.join()

    def press(self, shortcut):
        """In every session that has it."""
        for session, shortcuts in self.sessions.items():
            if any(shortcut == known[0] for known in shortcuts or ()):
                activated = GLib.Variant("(osta{sv})", (session, shortcut, 0, {}))
                self.bus.emit_signal(self.callers[session], PATH, SHORTCUTS, "Activated", activated)

    def _run(self, address):
        self.context.push_thread_default()
        flags = Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION
        self.bus = Gio.DBusConnection.new_for_address_sync(address, flags, None, None)
        self.shortcuts, self.session = Gio.DBusNodeInfo.new_for_xml(INTERFACES).interfaces
        self.bus.register_object(PATH, self.shortcuts, self._called, self._version, None)
        name = GLib.Variant("(su)", ("org.freedesktop.portal.Desktop", 0))
        self.bus.call_sync("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "RequestName",
                           name, None, 0, -1, None)
        self.ready.set()
        self.loop.run()
        self.bus.close_sync(None)

    def _version(self, *_):
        self.may_be_found.wait()
        return GLib.Variant("u", 1)

    def _called(self, _bus, sender, path, _interface, method, arguments, call):
        if method == "Close":
            self.sessions.pop(path, None)
            call.return_value(None)
            return
        given = arguments.unpack()
        options = given[-1]
        caller = sender[1:].replace(".", "_")
        request = f"{PATH}/request/{caller}/{options['handle_token']}"
        results = {}
        if method == "CreateSession":
            session = f"{PATH}/session/{caller}/{options['session_handle_token']}"
            self.bus.register_object(session, self.session, self._called, None, None)
            self.sessions[session], self.callers[session] = None, sender
            results["session_handle"] = GLib.Variant("s", session)
        elif self.sessions.get(given[0], ()) is not None:
            call.return_dbus_error("org.freedesktop.portal.Error.Failed", "No session, or it has its shortcuts")
            return
        elif self.agrees:
            self.sessions[given[0]] = [
                (name, its["description"], its["preferred_trigger"]) for name, its in given[1]
            ]
        call.return_value(GLib.Variant("(o)", (request,)))
        refused = method == "BindShortcuts" and not self.agrees
        self.refusals += refused
        answer = GLib.Variant("(ua{sv})", (int(refused), results))
        self.bus.emit_signal(sender, request, "org.freedesktop.portal.Request", "Response", answer)
