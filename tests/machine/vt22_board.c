// SPDX-License-Identifier: MIT OR GPL-2.0
// The driver of a board that does not exist: two PCI cards of shared memory. The one with 8 KiB is the DPRAM
// of a VT22, which a UIO device gives to user space; the one with a page holds the module's three lines in
// its first four bytes, and becomes a GPIO chip: irq, reset, boot. The four bytes are those of a lines file,
// because `vesk module` plays the module on the other side of both. That memory raises no interrupt, so a
// timer looks at it for as long as somebody waits for an edge.
#include <linux/gpio/driver.h>
#include <linux/hrtimer.h>
#include <linux/module.h>
#include <linux/pci.h>
#include <linux/uio_driver.h>

#define DPRAM_SIZE 8192

enum { IRQ, RESET, BOOT, LINES };

enum { IRQ_BYTE, RESET_N_BYTE, BOOT_N_BYTE, GENERATION_BYTE };

static unsigned int poll_us = 50;
module_param(poll_us, uint, 0444);
MODULE_PARM_DESC(poll_us, "how often the interrupt line is looked at, in microseconds");

struct board {
    struct gpio_chip chip;
    void __iomem* bytes;
    raw_spinlock_t lock;
    struct hrtimer timer;
    unsigned int edges; /* that somebody waits for: IRQ_TYPE_EDGE_... */
    bool awaited, running;
    bool asserted, released; /* since the timer looked last */
};

static bool is_asserted(struct board* board) {
    u8 irq = ioread8(board->bytes + IRQ_BYTE);

    return ioread8(board->bytes + RESET_N_BYTE) && irq && irq == ioread8(board->bytes + GENERATION_BYTE);
}

/* Reading the module's register releases its interrupt; here the look at the line stands for that. */
static int board_get(struct gpio_chip* chip, unsigned int line) {
    struct board* board = gpiochip_get_data(chip);
    unsigned long flags;
    int level = 1;

    if (line != IRQ)
        return ioread8(board->bytes + (line == RESET ? RESET_N_BYTE : BOOT_N_BYTE)) != 0;
    raw_spin_lock_irqsave(&board->lock, flags);
    if (is_asserted(board)) {
        iowrite8(0, board->bytes + IRQ_BYTE);
        mb(); /* the module sees the release before the answer that follows */
        board->released |= board->asserted;
        board->asserted = false;
        level = 0;
    }
    raw_spin_unlock_irqrestore(&board->lock, flags);
    return level;
}

static void drive_reset(struct board* board, int level) {
    u8 generation;

    if (!level) {
        iowrite8(0, board->bytes + RESET_N_BYTE);
        iowrite8(0, board->bytes + IRQ_BYTE);
    } else if (!ioread8(board->bytes + RESET_N_BYTE)) {
        iowrite8(0, board->bytes + IRQ_BYTE);
        generation = ioread8(board->bytes + GENERATION_BYTE);
        iowrite8(generation == 255 ? 1 : generation + 1, board->bytes + GENERATION_BYTE);
        iowrite8(1, board->bytes + RESET_N_BYTE);
    }
}

static void board_set(struct gpio_chip* chip, unsigned int line, int level) {
    struct board* board = gpiochip_get_data(chip);
    unsigned long flags;

    raw_spin_lock_irqsave(&board->lock, flags);
    if (line == RESET)
        drive_reset(board, level);
    else if (line == BOOT)
        iowrite8(level != 0, board->bytes + BOOT_N_BYTE);
    raw_spin_unlock_irqrestore(&board->lock, flags);
}

static int board_get_direction(struct gpio_chip* chip, unsigned int line) {
    return line == IRQ ? GPIO_LINE_DIRECTION_IN : GPIO_LINE_DIRECTION_OUT;
}

static int board_direction_input(struct gpio_chip* chip, unsigned int line) {
    return line == IRQ ? 0 : -EINVAL;
}

static int board_direction_output(struct gpio_chip* chip, unsigned int line, int level) {
    if (line == IRQ)
        return -EINVAL;
    board_set(chip, line, level);
    return 0;
}

static enum hrtimer_restart board_look(struct hrtimer* timer) {
    struct board* board = container_of(timer, struct board, timer);
    unsigned int edges = 0;
    bool before, now;

    raw_spin_lock(&board->lock);
    if (!board->awaited) {
        board->running = false;
        raw_spin_unlock(&board->lock);
        return HRTIMER_NORESTART;
    }
    before = board->asserted;
    now = board->asserted = is_asserted(board);
    if (board->released || (before && !now))
        edges |= IRQ_TYPE_EDGE_RISING;
    if (now && !before)
        edges |= IRQ_TYPE_EDGE_FALLING;
    board->released = false;
    edges &= board->edges;
    raw_spin_unlock(&board->lock);
    if (edges)
        generic_handle_domain_irq(board->chip.irq.domain, IRQ);
    hrtimer_forward_now(timer, ns_to_ktime(poll_us * NSEC_PER_USEC));
    return HRTIMER_RESTART;
}

static int board_irq_set_type(struct irq_data* data, unsigned int type) {
    struct board* board = gpiochip_get_data(irq_data_get_irq_chip_data(data));

    if (irqd_to_hwirq(data) != IRQ || type & ~IRQ_TYPE_EDGE_BOTH)
        return -EINVAL;
    board->edges = type;
    return 0;
}

static void board_irq_mask(struct irq_data* data) {
    struct gpio_chip* chip = irq_data_get_irq_chip_data(data);
    struct board* board = gpiochip_get_data(chip);
    unsigned long flags;

    raw_spin_lock_irqsave(&board->lock, flags);
    board->awaited = false;
    raw_spin_unlock_irqrestore(&board->lock, flags);
    gpiochip_disable_irq(chip, irqd_to_hwirq(data));
}

static void board_irq_unmask(struct irq_data* data) {
    struct gpio_chip* chip = irq_data_get_irq_chip_data(data);
    struct board* board = gpiochip_get_data(chip);
    unsigned long flags;

    gpiochip_enable_irq(chip, irqd_to_hwirq(data));
    raw_spin_lock_irqsave(&board->lock, flags);
    board->awaited = true;
    board->released = false;
    board->asserted = is_asserted(board); /* a level that is there already is no edge */
    if (!board->running) {
        board->running = true;
        hrtimer_start(&board->timer, ns_to_ktime(poll_us * NSEC_PER_USEC), HRTIMER_MODE_REL_HARD);
    }
    raw_spin_unlock_irqrestore(&board->lock, flags);
}

static const struct irq_chip board_irq_chip = {
    .name = "vt22-lines",
    .irq_mask = board_irq_mask,
    .irq_unmask = board_irq_unmask,
    .irq_set_type = board_irq_set_type,
    .flags = IRQCHIP_IMMUTABLE,
    GPIOCHIP_IRQ_RESOURCE_HELPERS,
};

static const char* const line_names[LINES] = {"vt22-irq", "vt22-reset", "vt22-boot"};

static void stop_timer(void* timer) {
    hrtimer_cancel(timer);
}

static int probe_lines(struct pci_dev* card) {
    struct board* board = devm_kzalloc(&card->dev, sizeof(*board), GFP_KERNEL);
    int error;

    if (!board)
        return -ENOMEM;
    board->bytes = pcim_iomap(card, 2, 0);
    if (!board->bytes)
        return -ENOMEM;
    raw_spin_lock_init(&board->lock);
    hrtimer_init(&board->timer, CLOCK_MONOTONIC, HRTIMER_MODE_REL_HARD);
    board->timer.function = board_look;
    error = devm_add_action(&card->dev, stop_timer, &board->timer);
    if (error)
        return error;
    board->chip.label = "vt22-lines";
    board->chip.parent = &card->dev;
    board->chip.owner = THIS_MODULE;
    board->chip.base = -1;
    board->chip.ngpio = LINES;
    board->chip.names = line_names;
    board->chip.get = board_get;
    board->chip.set = board_set;
    board->chip.get_direction = board_get_direction;
    board->chip.direction_input = board_direction_input;
    board->chip.direction_output = board_direction_output;
    gpio_irq_chip_set_chip(&board->chip.irq, &board_irq_chip);
    board->chip.irq.handler = handle_simple_irq;
    board->chip.irq.default_type = IRQ_TYPE_NONE;
    return devm_gpiochip_add_data(&card->dev, &board->chip, board);
}

static int probe_dpram(struct pci_dev* card) {
    struct uio_info* info = devm_kzalloc(&card->dev, sizeof(*info), GFP_KERNEL);

    if (!info)
        return -ENOMEM;
    info->name = "vt22";
    info->version = "1";
    info->irq = UIO_IRQ_NONE;
    info->mem[0].addr = pci_resource_start(card, 2);
    info->mem[0].size = pci_resource_len(card, 2);
    info->mem[0].memtype = UIO_MEM_PHYS;
    return devm_uio_register_device(&card->dev, info);
}

static int board_probe(struct pci_dev* card, const struct pci_device_id* id) {
    int error = pcim_enable_device(card);

    if (error)
        return error;
    return pci_resource_len(card, 2) == DPRAM_SIZE ? probe_dpram(card) : probe_lines(card);
}

static const struct pci_device_id board_cards[] = {{PCI_DEVICE(0x1af4, 0x1110)}, {}};
MODULE_DEVICE_TABLE(pci, board_cards);

static struct pci_driver board_driver = {
    .name = "vt22_board",
    .id_table = board_cards,
    .probe = board_probe,
};
module_pci_driver(board_driver);

MODULE_DESCRIPTION("DPRAM and lines of a VT22 on cards of shared memory");
MODULE_LICENSE("Dual MIT/GPL");
