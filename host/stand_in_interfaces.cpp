#include "host/stand_in_interfaces.h"

#include <utility>

#include "host/give_interface.h"
#include "host/message_lines.h"
#include "host/trace.h"
#include "host/xml_utilities.h"
#include "marrowpress/properties.h"

namespace marrowpress {
namespace {

constexpr std::int32_t kHostOk = 0;
constexpr std::int32_t kHostRefused = -1;

bool isProperty(std::uint32_t number, HostProperty property) {
    return number == static_cast<std::uint32_t>(property);
}

/// Whether the command to "XmlUtilities" lets something go, as whoever cleans up does.
bool letsGo(std::string_view command) {
    const std::optional<XmlUtilitiesCommand> parsed = parseXmlUtilitiesCommand(command);
    return parsed && (parsed->kind == XmlUtilitiesCommand::Kind::kEnd ||
                      parsed->kind == XmlUtilitiesCommand::Kind::kTerminate);
}

/// Runs one interface method; nothing that it throws gets to the client.
template <class Body>
ComStatus guarded(const Body& body) noexcept {
    try {
        body();
        return kComOk;
    } catch (...) {
        return kComFailed;
    }
}

template <class Value>
void set(Value* target, Value value) {
    if (target) {
        *target = value;
    }
}

std::string_view viewOf(const char* text) {
    return text ? text : std::string_view();
}

}  // namespace

StandInInterfaces::StandInInterfaces(StandInHostOptions options) : options_(std::move(options)) {
    for (const OpenDocument& document : options_.openDocuments) {
        documentsById_.emplace(document.id, &document);
    }
}

void StandInInterfaces::releaseClient() {
    client_ = {};
    notifications_.clear();
}

bool StandInInterfaces::isSubscribed(std::uint32_t notification) const {
    return notifications_.contains(notification);
}

void StandInInterfaces::beginCall() {
    answer_.reset();
    failure_ = nullptr;
    isInCall_ = true;
}

std::optional<TypedValues> StandInInterfaces::endCall() {
    isInCall_ = false;
    std::optional<TypedValues> answer = std::exchange(answer_, std::nullopt);
    if (const std::exception_ptr failure = std::exchange(failure_, nullptr)) {
        std::rethrow_exception(failure);
    }
    return answer;
}

void StandInInterfaces::requireGoingOn() {
    if (!isInCall_) {
        return;
    }
    if (!failure_ && options_.isInterrupted && options_.isInterrupted()) {
        failure_ = std::make_exception_ptr(RunInterrupted());
    }
    if (failure_) {
        std::rethrow_exception(failure_);
    }
}

ComStatus StandInInterfaces::queryInterface(const InterfaceId& id, void** object) {
    if (!object) {
        return kComFailed;
    }
    *object = nullptr;
    const bool isFound =
        giveInterface<IHostMain, IHostText, IHostModules, IHostNotifications, IHostClients,
                      IHostProperties, IHostProgress, IHostConsole>(*this, id, object) ||
        (options_.onObservation && giveInterface<IHostObserver>(*this, id, object)) ||
        (options_.onReference && giveInterface<IHostReferenceObserver>(*this, id, object)) ||
        giveInterface<IHostObject>(provider(), id, object);
    if (!isFound) {
        return kComNoInterface;
    }
    addRef();
    return kComOk;
}

std::uint32_t StandInInterfaces::addRef() {
    if (references_ == 0) {
        self_ = shared_from_this();
    }
    return ++references_;
}

std::uint32_t StandInInterfaces::release() {
    if (references_ == 0) {
        return 0;
    }
    const std::uint32_t left = --references_;
    // Moved out of the object first: the last owner's end destroys it.
    const std::shared_ptr<StandInInterfaces> last = left == 0 ? std::move(self_) : nullptr;
    return left;
}

ComStatus StandInInterfaces::attachClient(IHostObject* notifications, std::uint32_t /*flags*/,
                                          const ClientRegistration* /*registration*/,
                                          std::int32_t* hostStatus) {
    return guarded([&] {
        const bool isAccepted = notifications && !client_;
        if (isAccepted) {
            client_ = InterfaceRef<IHostObject>::share(notifications);
        }
        set(hostStatus, isAccepted ? kHostOk : kHostRefused);
    });
}

ComStatus StandInInterfaces::query(std::uint32_t question, std::int32_t* answer) {
    return guarded([&] { set(answer, question == kClientFreesTexts ? 1 : 0); });
}

ComStatus StandInInterfaces::enableUnicode(std::uint32_t on, std::int32_t* hostStatus) {
    return guarded([&] {
        set(hostStatus, kHostOk);
        if (options_.trace) {
            options_.trace->enableUnicode(on);
        }
    });
}

ComStatus StandInInterfaces::useModule(void* /*module*/, std::int32_t* hostStatus) {
    return guarded([&] { set(hostStatus, kHostOk); });
}

ComStatus StandInInterfaces::registerNotification(std::uint32_t notification, std::uint32_t state,
                                                  std::int32_t* hostStatus) {
    return guarded([&] {
        if (state == 0) {
            notifications_.erase(notification);
        } else {
            notifications_.insert(notification);
        }
        set(hostStatus, kHostOk);
        if (options_.trace) {
            options_.trace->registerNotification(notification, state, kHostOk);
        }
    });
}

bool StandInInterfaces::hasXmlUtilities(std::string_view client) const {
    return client == kXmlUtilitiesClient && options_.resolvePublicId;
}

ComStatus StandInInterfaces::callClient(const char* client, const char* command,
                                        std::int32_t* result, std::int32_t* hostStatus) {
    if (!letsGo(viewOf(command))) {
        requireGoingOn();
    }
    return guarded([&] {
        const bool exists = hasXmlUtilities(viewOf(client));
        const std::optional<XmlUtilitiesCommand> parsed =
            exists ? parseXmlUtilitiesCommand(viewOf(command)) : std::nullopt;
        const bool isKnown = parsed.has_value();
        if (isKnown && options_.onDocument) {
            tellDocument(*parsed);
        }
        set(result, isKnown ? 1 : 0);
        set(hostStatus, exists ? kHostOk : kHostRefused);
        if (options_.trace) {
            options_.trace->callClient(viewOf(client), viewOf(command), isKnown ? 1 : 0);
        }
    });
}

void StandInInterfaces::tellDocument(const XmlUtilitiesCommand& command) const {
    if (command.kind == XmlUtilitiesCommand::Kind::kStart) {
        options_.onDocument(command.baseFile);
    } else if (command.kind == XmlUtilitiesCommand::Kind::kEnd) {
        options_.onDocument({});
    }
}

std::optional<std::string> StandInInterfaces::resolve(std::string_view command) {
    const std::optional<XmlUtilitiesCommand> parsed = parseXmlUtilitiesCommand(command);
    if (!parsed || parsed->kind != XmlUtilitiesCommand::Kind::kResolveEntity) {
        return std::nullopt;
    }
    try {
        return options_.resolvePublicId(parsed->publicId);
    } catch (...) {
        failure_ = std::current_exception();
        throw;
    }
}

ComStatus StandInInterfaces::callClientTyped(const char* client, const char* command,
                                             HostTypedValueList* reply, std::int32_t* hostStatus) {
    requireGoingOn();
    set(reply, HostTypedValueList{0, nullptr});
    const bool exists = hasXmlUtilities(viewOf(client));
    set(hostStatus, exists ? kHostOk : kHostRefused);
    const std::optional<std::string> path = exists ? resolve(viewOf(command)) : std::nullopt;
    return guarded([&] {
        if (options_.trace) {
            TypedValues shown;
            if (path) {
                shown.push_back({static_cast<std::uint32_t>(HostValueType::kString), *path});
            }
            options_.trace->callClientTyped(viewOf(client), viewOf(command), shown);
        }
        if (path && reply) {
            *reply = makeStringReply(*path);
        }
    });
}

ComStatus StandInInterfaces::returnTypedValue(HostTypedValueList values, HostTypedValueList* answer,
                                              std::int32_t* hostStatus) {
    const HostTypedValues owner(values);
    return guarded([&] {
        set(answer, HostTypedValueList{0, nullptr});
        set(hostStatus, isInCall_ ? kHostOk : kHostRefused);
        TypedValues copy = copyTypedValues(owner.list());
        if (options_.trace) {
            options_.trace->returnTypedValue(copy);
        }
        if (isInCall_) {
            answer_ = std::move(copy);
        }
    });
}

const OpenDocument* StandInInterfaces::findDocument(std::uint32_t id) const {
    const auto found = documentsById_.find(id);
    return found == documentsById_.end() ? nullptr : found->second;
}

ComStatus StandInInterfaces::getIntProp(std::uint32_t /*context*/, std::uint32_t object,
                                        std::uint32_t property, std::int32_t* value,
                                        std::int32_t* hostStatus) {
    requireGoingOn();
    return guarded([&] {
        const OpenDocument* const document =
            isProperty(property, HostProperty::kDocumentFlag) ? findDocument(object) : nullptr;
        const std::int32_t result = document ? document->flag : 0;
        set(value, result);
        set(hostStatus, document ? kHostOk : kHostRefused);
        if (options_.trace) {
            options_.trace->getIntProp(object, property, result);
        }
    });
}

std::optional<std::uint32_t> StandInInterfaces::idProperty(std::uint32_t object,
                                                           std::uint32_t property) const {
    const std::vector<OpenDocument>& documents = options_.openDocuments;
    if (object == kSessionObject) {
        if (!isProperty(property, HostProperty::kFirstDocument)) {
            return std::nullopt;
        }
        return documents.empty() ? 0 : documents.front().id;
    }
    const OpenDocument* const document = findDocument(object);
    if (!document || !isProperty(property, HostProperty::kNextDocument)) {
        return std::nullopt;
    }
    return document == &documents.back() ? 0 : (document + 1)->id;
}

ComStatus StandInInterfaces::getIdProp(std::uint32_t /*context*/, std::uint32_t object,
                                       std::uint32_t property, std::uint32_t* value,
                                       std::int32_t* hostStatus) {
    requireGoingOn();
    return guarded([&] {
        const std::optional<std::uint32_t> result = idProperty(object, property);
        set(value, result.value_or(0));
        set(hostStatus, result ? kHostOk : kHostRefused);
        if (options_.trace) {
            options_.trace->getIdProp(object, property, result.value_or(0));
        }
    });
}

ComStatus StandInInterfaces::getStringProp(std::uint32_t /*context*/, std::uint32_t object,
                                           std::uint32_t property, char** value,
                                           std::int32_t* hostStatus) {
    requireGoingOn();
    return guarded([&] {
        set<char*>(value, nullptr);
        const OpenDocument* const document =
            isProperty(property, HostProperty::kDocumentPath) ? findDocument(object) : nullptr;
        set(hostStatus, document ? kHostOk : kHostRefused);
        if (options_.trace) {
            options_.trace->getStringProp(object, property,
                                          document ? std::optional(document->path) : std::nullopt);
        }
        if (document && value) {
            *value = copyToMalloc(document->path);
        }
    });
}

ComStatus StandInInterfaces::reportProgress(std::int32_t kind, const char* text,
                                            std::int32_t number, std::int32_t* hostStatus) {
    requireGoingOn();
    return guarded([&] {
        set(hostStatus, kHostOk);
        if (options_.trace) {
            options_.trace->reportProgress(kind, viewOf(text), number);
        }
        if (options_.onProgress) {
            options_.onProgress(viewOf(text));
        }
    });
}

ComStatus StandInInterfaces::write(const char* text, std::int32_t* hostStatus) {
    requireGoingOn();
    return guarded([&] {
        set(hostStatus, kHostOk);
        if (options_.trace) {
            options_.trace->consoleWrite(viewOf(text));
        }
        if (options_.onConsole) {
            options_.onConsole(messageIdOf(viewOf(text)), viewOf(text));
        }
    });
}

ComStatus StandInInterfaces::observe(const Observation* observation) {
    const ComStatus status = guarded([&] {
        if (observation && options_.onObservation) {
            options_.onObservation(*observation);
        }
    });
    // A part may be long, and hold no other operation.
    if (observation && observation->kind == ObservationKind::kPhase) {
        requireGoingOn();
    }
    return status;
}

ComStatus StandInInterfaces::observeReference(const Observation* observation) {
    return guarded([&] {
        if (observation && options_.onReference) {
            options_.onReference(*observation);
        }
    });
}

}  // namespace marrowpress
