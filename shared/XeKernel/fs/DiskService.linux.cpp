#include "fs/DiskService.linux.h"

#include "XeSafeCRT.h"

#include <gio/gio.h>

#include <memory>
#include <string_view>

namespace diskService {
namespace {

constexpr char kService[] = "org.freedesktop.UDisks2";
constexpr int kDefaultTimeLimit = -1;

struct Release {
    void operator()(GDBusConnection* connection) const
    {
        g_dbus_connection_close_sync(connection, nullptr, nullptr);
        g_object_unref(connection);
    }
    void operator()(GVariant* value) const { g_variant_unref(value); }
    void operator()(char* text) const { g_free(text); }
};
using Connection = std::unique_ptr<GDBusConnection, Release>;
using Value = std::unique_ptr<GVariant, Release>;

/// A connection of its own: the one that a process shares ends the process when the bus goes.
Connection _connect()
{
    const std::unique_ptr<char, Release> address(
        g_dbus_address_get_for_bus_sync(G_BUS_TYPE_SYSTEM, nullptr, nullptr));
    constexpr auto kFlags =
        static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                          G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
    return Connection(address == nullptr ? nullptr
                                         : g_dbus_connection_new_for_address_sync(
                                               address.get(), kFlags, nullptr, nullptr, nullptr));
}

/// @param arguments  Taken over when floating.
Value _call(const Connection& connection, const char* object, const char* interface,
            const char* method, GVariant* arguments, int timeLimitMs)
{
    return Value(g_dbus_connection_call_sync(connection.get(), kService, object, interface, method,
                                             arguments, nullptr, G_DBUS_CALL_FLAGS_NONE,
                                             timeLimitMs, nullptr, nullptr));
}

/// What the service manages: object path -> interface -> property -> value.
Value _objects(const Connection& connection)
{
    const Value answer =
        _call(connection, "/org/freedesktop/UDisks2", "org.freedesktop.DBus.ObjectManager",
              "GetManagedObjects", nullptr, kDefaultTimeLimit);
    if (answer == nullptr ||
        !g_variant_is_of_type(answer.get(), G_VARIANT_TYPE("(a{oa{sa{sv}}})"))) {
        return nullptr;
    }
    return Value(g_variant_get_child_value(answer.get(), 0));
}

/// A property of an object's interface; null when it has none of that type.
Value _property(GVariant* interfaces, const char* interface, const char* name, const char* type)
{
    const Value properties(g_variant_lookup_value(interfaces, interface, G_VARIANT_TYPE("a{sv}")));
    return Value(properties == nullptr
                     ? nullptr
                     : g_variant_lookup_value(properties.get(), name, G_VARIANT_TYPE(type)));
}

/// True for the object of a file system that is mounted at the path.
bool _isMountedAt(GVariant* interfaces, const std::string& mountPoint)
{
    const Value points =
        _property(interfaces, "org.freedesktop.UDisks2.Filesystem", "MountPoints", "aay");
    for (gsize i = 0; points != nullptr && i < g_variant_n_children(points.get()); ++i) {
        const Value point(g_variant_get_child_value(points.get(), i));
        if (mountPoint == g_variant_get_bytestring(point.get())) {
            return true;
        }
    }
    return false;
}

/// Object paths.
struct Volume {
    std::string block;
    std::string drive; ///< Empty when its medium cannot be ejected.
};

/// The drive of a block device, when it can eject.
std::string _ejectableDrive(GVariant* objects, GVariant* blockInterfaces)
{
    const Value drive = _property(blockInterfaces, "org.freedesktop.UDisks2.Block", "Drive", "o");
    if (drive == nullptr) {
        return {};
    }
    const char* const path = g_variant_get_string(drive.get(), nullptr);
    const Value interfaces(g_variant_lookup_value(objects, path, G_VARIANT_TYPE("a{sa{sv}}")));
    const Value ejectable =
        interfaces == nullptr
            ? nullptr
            : _property(interfaces.get(), "org.freedesktop.UDisks2.Drive", "Ejectable", "b");
    return ejectable != nullptr && g_variant_get_boolean(ejectable.get()) ? path : "";
}

Volume _findVolume(GVariant* objects, const std::string& mountPoint)
{
    for (gsize i = 0; i < g_variant_n_children(objects); ++i) {
        const Value object(g_variant_get_child_value(objects, i));
        const Value path(g_variant_get_child_value(object.get(), 0));
        const Value interfaces(g_variant_get_child_value(object.get(), 1));
        if (_isMountedAt(interfaces.get(), mountPoint)) {
            return {g_variant_get_string(path.get(), nullptr),
                    _ejectableDrive(objects, interfaces.get())};
        }
    }
    return {};
}

/// Calls a method that takes options only. Data may have to be written out first: no time limit.
bool _run(const Connection& connection, const std::string& object, const char* interface,
          const char* method)
{
    GVariantBuilder options;
    g_variant_builder_init(&options, G_VARIANT_TYPE_VARDICT);
    g_variant_builder_add(&options, "{sv}", "auth.no_user_interaction",
                          g_variant_new_boolean(TRUE));
    return _call(connection, object.c_str(), interface, method, g_variant_new("(a{sv})", &options),
                 G_MAXINT) != nullptr;
}

} // namespace

bool eject(const std::string& mountPoint)
{
    const Connection connection = _connect();
    const Value objects = connection == nullptr ? nullptr : _objects(connection);
    if (objects == nullptr) {
        return false;
    }
    const Volume volume = _findVolume(objects.get(), mountPoint);
    return !volume.block.empty() &&
           _run(connection, volume.block, "org.freedesktop.UDisks2.Filesystem", "Unmount") &&
           (volume.drive.empty() ||
            _run(connection, volume.drive, "org.freedesktop.UDisks2.Drive", "Eject"));
}

} // namespace diskService
