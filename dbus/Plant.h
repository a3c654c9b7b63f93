// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/modules/dpvm/Vt22Module.h"
#include "vesk/modules/dpvm/config/IBusConfig.h"

#include <chrono>
#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <vector>

/// A running module, published on D-Bus for those who look at a plant. docs/plant.md says what clients see.
namespace Vesk::DBus {

/// A value in the process data that clients may ask for by its name.
struct Signal {
    enum class Direction {
        TO_BUS,   ///< in the input area
        FROM_BUS, ///< in the output area
    };

    enum class Type {
        BIT,
        UINT8,
        INT8,
        UINT16,
        INT16,
        UINT32,
        INT32,
        UINT64,
        INT64,
        FLOAT32,
        FLOAT64,
        BYTES
    };

    /// For `slave`: the offset counts in the area itself.
    static constexpr int AREA = -1;

    std::string name{}; ///< for example "conveyor1.speed"
    Direction direction = Direction::FROM_BUS;
    Type type = Type::UINT8;
    int offset = 0;   ///< of the first byte in the data of the slave, or in the area
    int slave = AREA; ///< a station address
    int bit = 0;      ///< 0 to 7, of a BIT
    int length = 1;   ///< in bytes, of BYTES
    bool littleEndian = false;
    double scale = 1; ///< what a number is multiplied with; with another one than 1 it becomes a double
    std::string unit{};
};

/// How a plant is published.
struct PlantOptions {
    /// "system", "session", or the address of a bus: "unix:path=/run/plant".
    std::string bus = "system";
    /// Lets clients change something: the interface org.libvesk.Control1.
    bool control = false;
    /// Measures each Update, with two looks at the clock.
    bool measures = true;
    /// How many requests to the module may wait, and how many of one client; whoever comes then gets an
    /// error. As many may wait of those that the application answers without the module.
    std::size_t waitingRequests = 64;
    std::size_t waitingOfOneClient = 8;
    /// How long a client's request may last, from its call on.
    std::chrono::milliseconds requestTime{5000};
    /// What clients see as the name of the configuration.
    std::string configurationName;
    /// Names of slaves, by their addresses.
    std::map<unsigned char, std::string> slaveNames;
    std::vector<Signal> signals;
};

/// The application's end of what is published: it calls Update of the plant instead of the module's.
/// Everything else happens in a thread of the service, which never touches the module. It has no real-time
/// priority, also where the thread that publishes has one.
///
/// Update, SetMaster and the end of the object belong to the thread of the module; the latter two may happen
/// in its callbacks, too.
class Plant {
public:
    /// Publishes `master` as the object /org/libvesk/Master of the service org.libvesk.Master.`name`, with a
    /// thread of its own. It does not wait for the bus: without one the plant runs, and is published once
    /// there is one.
    ///
    /// The callbacks that the module object was given stay the application's. Without an operation-mode
    /// callback the library does not read the mode, and clients see none. `config` may be null.
    ///
    /// ArgumentNullException without a module; ArgumentException for a name that is no word of letters,
    /// digits and underscores, and for signals that are none of the slaves' data or share a name;
    /// std::system_error where the system gives no thread.
    static std::shared_ptr<Plant> Publish(const std::string& name,
                                          std::shared_ptr<Modules::DPVM::Vt22Module> master,
                                          const std::shared_ptr<Modules::DPVM::Config::IBusConfig>& config,
                                          const PlantOptions& options = {});

    /// Publishes another module of the process, by the same service and on the same bus, as the object
    /// /org/libvesk/Master/`name`. Failures as above, and ArgumentException for a name that is taken.
    std::shared_ptr<Plant> PublishBeside(const std::string& name,
                                         std::shared_ptr<Modules::DPVM::Vt22Module> master,
                                         const std::shared_ptr<Modules::DPVM::Config::IBusConfig>& config,
                                         const PlantOptions& options = {});

    /// Takes the object from the bus; what clients still wait for ends with an error, and bytes that they
    /// hold are the application's again. The last one ends the thread.
    ~Plant();
    Plant(const Plant&) = delete;
    Plant& operator=(const Plant&) = delete;

    /// Calls master->Update(), measures it and answers what was asked. What that throws passes through as it
    /// is; clients see it until an Update works again, with the module after its Reset or with another one.
    /// InvalidOperationException without a module.
    void Update();

    /// Goes on with a new module object; null lets go of the old one, which puts the module into reset unless
    /// the application has it too. Clients see none then, and the bytes that they hold there are the
    /// application's again.
    void SetMaster(std::shared_ptr<Modules::DPVM::Vt22Module> master);

    /// The service has its name on the bus. Otherwise Trouble says why not; it tries again each second.
    bool Published() const;
    std::string Trouble() const;

    /// What was measured so far, in nanoseconds, and how many Updates there were.
    struct Times {
        std::uint64_t updates;
        std::uint64_t leastUpdate, meanUpdate, greatestUpdate;
        std::uint64_t leastPeriod, meanPeriod, greatestPeriod;
    };

    Times GetTimes() const;

private:
    struct Parts;

    explicit Plant(std::unique_ptr<Parts> parts);

    std::unique_ptr<Parts> _parts;
};

} // namespace Vesk::DBus
