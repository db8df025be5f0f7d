# Everything a newcomer needs, from a fresh Debian 12 or 13 on. `make help` lists the targets.
JOBS ?= $(shell nproc)
BUILD = build
PREFIX ?= /usr/local
export DESTDIR

.PHONY: help setup build run demo screenshots install uninstall deb test test-fresh check check-format check-layers check-share \
    check-qml check-packaging check-tidy check-sanitizers check-hardening check-fuzz fuzz soak test-desktop test-radio \
    bench lab lab-radio clean

help:
	@sed -n 's/^\([a-z-]*\):.*## /\1\t/p' Makefile | expand -t 20

setup: ## installs what `make run` and `make test` need, which call it themselves; WITH="check radio" installs more
	@scripts/setup build run display test $(WITH)

build: ## the programs, at build/netvane and build/netvane-report
	@scripts/setup build run
	@cmake --preset release >/dev/null
	@cmake --build $(BUILD) -j $(JOBS) --target netvane netvane-report

run: build ## builds and starts the program; without a display on a virtual one
	@scripts/start $(BUILD)/netvane

demo: ## the program on made-up networks, one after another; SCENE=weak stays with one
	@scripts/setup build run
	@cmake --preset release >/dev/null
	@cmake --build $(BUILD) -j $(JOBS) --target netvane-demo
	@scripts/start $(BUILD)/netvane-demo $(if $(SCENE),--scene $(SCENE))

screenshots: ## draws docs/screenshots from the demonstration, without a display
	@scripts/setup build run
	@cmake --preset release >/dev/null
	@cmake --build $(BUILD) -j $(JOBS) --target netvane-demo
	@QT_QPA_PLATFORM=offscreen QT_SCALE_FACTOR=1 $(BUILD)/netvane-demo --screenshots docs/screenshots

install: build ## below PREFIX (/usr/local), and DESTDIR before that
	@scripts/install $(BUILD) "$(PREFIX)"

uninstall: ## removes what `make install` with the same PREFIX and DESTDIR installed, and nothing else
	@scripts/uninstall "$(PREFIX)"

deb: ## a Debian package, in build/deb
	@scripts/setup build run package
	@scripts/build-deb $(BUILD)/deb

test: ## builds and runs every test that needs no virtual machine, or those with LABEL=hermetic
	@scripts/setup build run test
	@cmake --preset release >/dev/null
	@cmake --build $(BUILD) -j $(JOBS)
	@ctest --test-dir $(BUILD) --output-on-failure -j $(JOBS) $(if $(LABEL),-L $(LABEL) --no-tests=error)

test-fresh: ## `make run` and `make test` on a RELEASE (trixie, bookworm) with nothing but git and make; needs root
	@scripts/setup fresh
	@scripts/test-fresh $(or $(RELEASE),trixie)

check: check-format check-layers check-share check-qml check-packaging check-hardening check-tidy check-sanitizers check-fuzz ## the other checks

check-format: ## clang-format would change nothing
	@scripts/setup check
	@git ls-files -z '*.cpp' '*.h' | xargs -0 clang-format --dry-run --Werror
	@echo "format: ok"

check-layers: ## no module includes a higher one, no file or function is too long
	@scripts/check-layers

check-share: ## a quarter to a third of the lines are tests
	@scripts/check-share

check-qml: ## qmllint has nothing to say about the views, no text is drawn but as plain text, no row but by Rows
	@scripts/setup build run check
	@cmake --preset release >/dev/null
	@cmake --build $(BUILD) -j $(JOBS) --target netvane_ui_qmllint
	@! grep -nE '(^|[^a-zA-Z.])(Text|Label|TextEdit|TextArea) *\{' $$(git ls-files 'src/ui/*.qml' | grep -v /PlainText.qml)
	@! grep -nE '(^|[^a-zA-Z.])(Repeater|Instantiator) *\{' $$(git ls-files 'src/ui/*.qml' | grep -v /Rows.qml)
	@echo "qml: ok"

check-packaging: ## desktop entry, metadata, manual pages, icons and versions are in order
	@scripts/setup check
	@scripts/check-packaging

check-tidy: ## clang-tidy over what the last ten commits changed, or over FILES
	@scripts/setup build run check
	@scripts/check-tidy $(FILES)

check-sanitizers: ## the tests under ASan with UBSan, and under TSan
	@scripts/setup build run test
	@scripts/check-sanitizers dev
	@scripts/check-sanitizers tsan

check-hardening: build ## the programs are built so that a fault stays a fault
	@scripts/setup check
	@scripts/check-hardening $(BUILD)/netvane $(BUILD)/netvane-views.so $(BUILD)/netvane-report

check-fuzz: ## a minute of each fuzz target
	@scripts/setup build run check
	@scripts/fuzz $(or $(FUZZ_SECONDS),60)

fuzz: ## ten minutes of each fuzz target, or FUZZ_SECONDS; TARGETS chooses
	@scripts/setup build run check
	@scripts/fuzz $(or $(FUZZ_SECONDS),600) $(TARGETS)

soak: ## a month of the program in some minutes, and what it holds at the end; DAYS=30
	@scripts/setup build run test
	@cmake --preset release >/dev/null
	@cmake --build $(BUILD) -j $(JOBS) --target netvane-soak
	@QT_QPA_PLATFORM=offscreen LC_ALL=C.UTF-8 $(BUILD)/tests/netvane-soak $(or $(DAYS),30)

test-desktop: ## the status item, the popover and the window on desktops with a virtual display
	@scripts/setup build run test desktop
	@cmake --preset release >/dev/null
	@cmake --build $(BUILD) -j $(JOBS) --target netvane netvane-demo
	@tests/rigs/desktop/run $(BUILD)/netvane
	@tests/rigs/desktop/run-wayland $(BUILD)/netvane

test-radio: ## end to end on simulated radios in a virtual machine
	@scripts/setup build run test radio
	@cmake --preset release >/dev/null
	@cmake --build $(BUILD) -j $(JOBS)
	@tests/rigs/radio/run --build $(BUILD)

lab: build ## plays faults of networks against the built program, as root; writes docs/lab.md
	@scripts/setup build run test
	@lab/run --subject "$(BUILD)/netvane-report --watch" --seeds 5 --out docs/lab.md

lab-radio: build ## likewise faults of Wi-Fi, on simulated radios in a virtual machine; writes docs/lab-radio.md
	@scripts/setup build run test radio
	@cmake --build $(BUILD) -j $(JOBS) --target netvane netvane-report wifi_watch
	@lab/radio/run --build $(BUILD) --out docs/lab-radio.md

bench: ## docs/figures.md: the figures, each beside what it is compared with, and BEFORE, a checkout with its bench build
	@scripts/setup build run test display bench radio
	@cmake --preset bench >/dev/null
	@cmake --build $(BUILD) -j $(JOBS)
	@bench/run-all $(BUILD) $(BEFORE)

clean: ## forgets everything that was built
	@rm -rf $(BUILD)
