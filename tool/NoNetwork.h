/**
 * @file
 * An engine that does not reach the network.
 */
#pragma once

/**
 * From now on, until the engines stop, whatever they would fetch over the network is a failure.
 * To be called when they are started.
 */
void forbidNetwork();

/**
 * Tells a refusal, which the engine keeps to itself where a stylesheet asked for a document.
 * @throws Failure if there was one
 */
void tellRefusedNetwork();
