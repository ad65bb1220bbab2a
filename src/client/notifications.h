#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "application/connection.h"

namespace marrowpress {

/// What the client does when the host calls it.
struct ClientCallbacks {
    void (*onClientInitialize)(std::uint32_t initCode);
    void (*onNotify)(std::uint32_t notification, std::uint32_t objectId, const char* text,
                     std::int32_t number);
};

/// The text of a record notification, cut into its fields at each byte 0x1E.
class NotificationRecord {
public:
    /// Copies `text`; null is a record without fields.
    explicit NotificationRecord(const char* text);
    NotificationRecord(const NotificationRecord&) = delete;
    NotificationRecord& operator=(const NotificationRecord&) = delete;

    std::uint32_t count() const noexcept;
    /// The fields, NUL-terminated, with a null pointer behind the last.
    const char* const* fields() const noexcept { return fields_.data(); }

    /// The record in place of a notification's text; it stays this object. What handles record
    /// notifications turns it back. Nothing here does: they are counted and ignored.
    const char* asText() const noexcept;

private:
    std::string text_;
    std::vector<const char*> fields_;
};

/// The object through which the host reaches the client: counts each kind of
/// callback, passes initialisations and notifications on, and answers for the
/// module's path and texts. Nothing is thrown into the host.
///
/// It lives as long as somebody holds a reference. With the last one it
/// releases the host's interfaces and the object that it was asked to keep.
class QuillstoneNotificationsC final : public QsApiInterfacesC,
                                       public IClientLifecycle,
                                       public IClientNotification,
                                       public IClientResources {
public:
    /// Which counter a callback moves.
    enum class Callback : std::size_t { kInitialize, kTerminate, kNotify, kGetResource, kCount };

    /// Made with one reference, the caller's. From here on the host operations go through the
    /// given interfaces.
    static QuillstoneNotificationsC* create(QsApiInterfacesC&& interfaces,
                                            const ClientCallbacks& callbacks);

    std::uint32_t callCount(Callback kind) const noexcept;

    ComStatus queryInterface(const InterfaceId& id, void** object) override;
    std::uint32_t addRef() override;
    std::uint32_t release() override;

    ComStatus initialize(std::uint32_t initCode) override;
    ComStatus terminate() override;
    ComStatus notify(std::uint32_t notification, std::uint32_t objectId, const char* text,
                     std::int32_t number) override;
    ComStatus getResource(const char* name, char** text) override;

private:
    QuillstoneNotificationsC(QsApiInterfacesC&& interfaces, const ClientCallbacks& callbacks);
    ~QuillstoneNotificationsC() = default;

    void count(Callback kind) noexcept;
    /// Splits a record's text before it goes on; everything else goes on as it is.
    void passOn(std::uint32_t notification, std::uint32_t objectId, const char* text,
                std::int32_t number);

    ClientCallbacks callbacks_;
    std::atomic<std::uint32_t> references_{1};
    std::array<std::uint32_t, static_cast<std::size_t>(Callback::kCount)> callCounts_{};
};

}  // namespace marrowpress
