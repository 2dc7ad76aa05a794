#!/bin/sh
# A helper that does what a test wants, whatever the request.
eval "$FAKE_FETCH"
