# Front door of the project: `make` builds build/tarn, `make test` runs every
# test in a release build and in a sanitizer build, `make run` runs an example,
# `make bench` runs the benchmarks against their peers, `make install`
# installs tarn, its manual page and the guide under PREFIX (default
# /usr/local; DESTDIR is honoured), `make uninstall` removes them.
BUILD  := build
ASAN   := build-asan
JOBS   ?= $(shell nproc 2>/dev/null || echo 2)
CMAKE  ?= cmake
PREFIX ?= /usr/local
BINDIR ?= $(PREFIX)/bin
MANDIR ?= $(PREFIX)/share/man/man1
DOCDIR ?= $(PREFIX)/share/doc/tarn

.PHONY: all test test-release test-asan run bench clean install install-files uninstall

all: $(BUILD)/CMakeCache.txt
	$(CMAKE) --build $(BUILD) -j$(JOBS)

$(BUILD)/CMakeCache.txt:
	$(CMAKE) -S . -B $(BUILD) -DCMAKE_BUILD_TYPE=Release

$(ASAN)/CMakeCache.txt:
	$(CMAKE) -S . -B $(ASAN) -DCMAKE_BUILD_TYPE=RelWithDebInfo -DTARN_SANITIZE=ON

test: test-release test-asan

test-release: all
	cd $(BUILD) && ctest --output-on-failure -j$(JOBS)

test-asan: $(ASAN)/CMakeCache.txt
	$(CMAKE) --build $(ASAN) -j$(JOBS)
	cd $(ASAN) && ASAN_OPTIONS=detect_leaks=0 ctest --output-on-failure -j$(JOBS)

run: all
	./$(BUILD)/tarn examples/hello.tarn

# install builds first; install-files copies what is already built.
install: all
	$(MAKE) install-files

install-files:
	install -d $(DESTDIR)$(BINDIR) $(DESTDIR)$(MANDIR) $(DESTDIR)$(DOCDIR)
	install -m 755 $(BUILD)/tarn $(DESTDIR)$(BINDIR)/tarn
	install -m 644 man/tarn.1 $(DESTDIR)$(MANDIR)/tarn.1
	install -m 644 docs/LANGUAGE.md $(DESTDIR)$(DOCDIR)/LANGUAGE.md

uninstall:
	rm -f $(DESTDIR)$(BINDIR)/tarn $(DESTDIR)$(MANDIR)/tarn.1 $(DESTDIR)$(DOCDIR)/LANGUAGE.md
	-rmdir $(DESTDIR)$(DOCDIR) 2>/dev/null

bench: all
	bench/run.sh

clean:
	rm -rf $(BUILD) $(ASAN)
