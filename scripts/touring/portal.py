#!/usr/bin/python3
"""The part of a desktop's portal that tells programs whether it prefers dark windows. Runs until it is killed.

usage: portal.py dark|light
"""
import sys

import gi
gi.require_version("Gio", "2.0")
from gi.repository import Gio, GLib  # noqa: E402

NAMESPACE, KEY = "org.freedesktop.appearance", "color-scheme"
VALUE = {"dark": 1, "light": 2}[sys.argv[1]]
INTERFACE = Gio.DBusNodeInfo.new_for_xml("""
<node><interface name='org.freedesktop.portal.Settings'>
  <method name='Read'><arg type='s' direction='in'/><arg type='s' direction='in'/><arg type='v' direction='out'/></method>
  <method name='ReadOne'><arg type='s' direction='in'/><arg type='s' direction='in'/><arg type='v' direction='out'/></method>
  <method name='ReadAll'><arg type='as' direction='in'/><arg type='a{sa{sv}}' direction='out'/></method>
  <property name='version' type='u' access='read'/>
</interface></node>""").interfaces[0]


def answer(_connection, _sender, _path, _interface, method, arguments, invocation):
    value = GLib.Variant("u", VALUE)
    if method == "ReadAll":
        invocation.return_value(GLib.Variant("(a{sa{sv}})", ({NAMESPACE: {KEY: value}},)))
    elif tuple(arguments) != (NAMESPACE, KEY):
        invocation.return_dbus_error("org.freedesktop.portal.Error.NotFound", "There is no such setting")
    else:
        # The older of the two methods wraps the value once more.
        invocation.return_value(GLib.Variant("(v)", (GLib.Variant("v", value) if method == "Read" else value,)))


def publish(connection, _name):
    connection.register_object("/org/freedesktop/portal/desktop", INTERFACE, answer,
                               lambda *_: GLib.Variant("u", 2), None)


Gio.bus_own_name(Gio.BusType.SESSION, "org.freedesktop.portal.Desktop", Gio.BusNameOwnerFlags.NONE, publish, None, None)
GLib.MainLoop().run()
