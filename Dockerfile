# Kelpkit, built and ready to run under Wine:
#
#     docker build -t kelpkit .
#     docker run --rm kelpkit                     the demonstration
#     docker run --rm kelpkit scripts/test.sh     every test
FROM debian:13-slim

RUN apt-get update \
    && apt-get install -y --no-install-recommends ca-certificates git sudo \
    && rm -rf /var/lib/apt/lists/* \
    && useradd --create-home --shell /bin/bash kelpkit \
    && echo 'kelpkit ALL=(ALL) NOPASSWD:ALL' >/etc/sudoers.d/kelpkit \
    && install -d -o kelpkit /kelpkit
USER kelpkit
WORKDIR /kelpkit

# What the set-up reads, and no more: a change of a source does not install again.
COPY --chown=kelpkit scripts/setup.sh scripts/steps.bash scripts/
COPY --chown=kelpkit cmake/mingw-w64-x86_64.cmake cmake/wine.sh cmake/
COPY --chown=kelpkit vcpkg-overlay/log4cplus/kelpkit.patch vcpkg-overlay/log4cplus/
RUN scripts/setup.sh dev && sudo rm -rf /var/lib/apt/lists/*

COPY --chown=kelpkit . .
RUN scripts/build.sh

CMD ["scripts/demo.sh"]
